#include "common/qt_printers.h"
#include "script/script_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

using Status = ScriptFile::Status;

// Pipes and FIFOs, read once and capped, are the player's end-to-end tests.
TEST(ScriptFile, ReadsRegularFilesAndRefusesWhatIsNoScript) {
    QTemporaryDir dir;
    const QString regular = dir.filePath("s.txt");
    QFile f(regular);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("CHK1   101\r\n;\r\n");
    f.close();
    const QString huge = dir.filePath("huge.txt");
    QFile h(huge);
    ASSERT_TRUE(h.open(QIODevice::WriteOnly));
    ASSERT_TRUE(h.resize(maxScriptBytes + 1)); // sparse: refused before a byte is read
    h.close();

    const struct {
        QString path;
        Status status;
        const char* says;
    } cases[] = {
        {regular, Status::Read, ""},
        {dir.filePath("missing.txt"), Status::Refused, "No such file"},
        {dir.path(), Status::Refused, "directory"},
        {"/dev/zero", Status::Refused, "not a regular file, a pipe or a FIFO"},
        {huge, Status::Refused, "more than 64 MB"},
    };
    for (const auto& c : cases) {
        const ScriptFile file = readScriptFile(c.path);
        EXPECT_EQ(file.status, c.status) << c.path.toStdString();
        EXPECT_TRUE(file.error.contains(c.says)) << file.error.toStdString();
    }
    EXPECT_EQ(readScriptFile(regular).bytes, "CHK1   101\r\n;\r\n");
}

} // namespace
