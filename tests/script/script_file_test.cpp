#include "common/qt_printers.h"
#include "script/script_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace larkspur;

namespace {

using Status = ScriptFile::Status;

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

// Writes `bytes` into a new FIFO from another thread and reads it as a script.
ScriptFile readThroughFifo(const QByteArray& bytes) {
    QTemporaryDir dir;
    const QByteArray fifo = QFile::encodeName(dir.filePath("fifo"));
    if (::mkfifo(fifo.constData(), 0600) != 0)
        return {};
    std::thread writer([&] {
        QFile out(QString::fromLocal8Bit(fifo));
        if (!out.open(QIODevice::WriteOnly))
            return;
        // Whatever the reader refuses to take is lost with the pipe.
        for (qsizetype done = 0; done < bytes.size();) {
            const qint64 n = out.write(bytes.constData() + done, bytes.size() - done);
            if (n <= 0)
                break;
            done += n;
        }
    });
    ScriptFile file = readScriptFile(QString::fromLocal8Bit(fifo));
    ::unlink(fifo.constData()); // unblocks a writer whose reader went away
    writer.join();
    return file;
}

TEST(ScriptFile, ReadsAFifoOnceAndCapsWhatItTakes) {
    ::signal(SIGPIPE, SIG_IGN); // the writer outlives the reader that refused it
    const ScriptFile small = readThroughFifo("CHK1   101\r\n;\r\n");
    EXPECT_EQ(small.status, Status::Read);
    EXPECT_EQ(small.bytes, "CHK1   101\r\n;\r\n");

    const ScriptFile endless = readThroughFifo(QByteArray(maxScriptBytes + 4096, 'x'));
    EXPECT_EQ(endless.status, Status::Refused);
    EXPECT_TRUE(endless.error.contains("more than 64 MB")) << endless.error.toStdString();
    EXPECT_TRUE(endless.bytes.isEmpty());
}

} // namespace
