// The learned script on disk: after every line learned, the file is every line so far and a
// closing comment line after them, which the runner passes over as the file's last line. What
// it plays is checked after every write, and after every write cut short.
#include "common/qt_printers.h"
#include "script/script_reader.h"
#include "tap/learned_script_file.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::tap;

namespace {

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What the runner plays of a file's bytes: its kept lines, the last line never among them.
QByteArray played(const QByteArray& file) {
    return readScript(file).text;
}

TEST(LearnedScriptFile, AFileCutShortByAKillAtAnyByteReplaysWhatWasLearnedBeforeOrWithIt) {
    const struct {
        const char* line;
        const char* closing;
    } steps[] = {
        {"VMAILHIS", "; nothing learned yet"},
        {"\00224001  \0034~", "; 1 command learned"},
        {"\00274001  4002  \0033~", "; 2 commands learned"},
        {"\00234002  \0035~", "; 3"},
    };
    QTemporaryDir dir;
    const QString path = dir.filePath("learned.txt");
    LearnedScriptFile file(path, [](const QString&) {});
    ASSERT_EQ(file.open(), "");
    QByteArray before = contents(path);
    EXPECT_EQ(before, "");
    QByteArray learned;
    for (const auto& step : steps) {
        file.write(step.line, step.closing);
        const QByteArray after = contents(path);
        if (QByteArray(step.line) != "VMAILHIS")
            learned += QByteArray(step.line) + "\r\n";
        EXPECT_EQ(played(after), learned + "\x03") << step.line;

        // The write cut short after any of its bytes, and the cut of what is left of a longer
        // closing line left undone.
        qsizetype from = 0;
        while (from < before.size() && from < after.size() && before[from] == after[from])
            ++from;
        for (qsizetype written = 0; written <= after.size() - from; ++written) {
            QByteArray cut = before;
            cut.replace(from, qMin(written, cut.size() - from), after.mid(from, written));
            const QByteArray plays = played(cut);
            EXPECT_TRUE(plays == played(before) || plays == played(after))
                << step.line << ", " << written << " bytes written: " << cut.toStdString();
        }
        before = after;
    }
}

TEST(LearnedScriptFile, TheClosingLineSaysWhenAndOnWhichLinkHowManyCommandsWereLearned) {
    const QDateTime since(QDate(2026, 1, 5), QTime(10, 0, 0));
    const QDateTime until(QDate(2026, 1, 5), QTime(10, 4, 31));
    const struct {
        QStringList arguments;
        int commands;
        QString link; // what follows "on the "
    } cases[] = {
        {{"--listen", "127.0.0.1:0", "--pbx", "10.0.0.5:15374"},
         1,
         "TCP link to the PBX at 10.0.0.5:15374: 1 command"},
        {{"--listen", "[::1]:0", "--pbx", "[::1]:15374"},
         2,
         "TCP link to the PBX at [::1]:15374: 2 commands"},
        {{"--pms-serial", "/dev/ttyUSB0", "--pbx-serial", "/dev/ttyUSB1"},
         19,
         "serial link to the PBX on /dev/ttyUSB1 at 9600,N,8,1: 19 commands"},
        {{"--monitor-pms", "/dev/ttyUSB0", "--monitor-pbx", "/dev/ttyUSB1", "--line", "1200,E,7,2"},
         3,
         "serial link heard on /dev/ttyUSB0 and /dev/ttyUSB1 at 1200,E,7,2: 3 commands"},
        {{"--monitor-pbx", "/dev/ttyUSB1"},
         0,
         "serial link heard on /dev/ttyUSB1 at 9600,N,8,1: 0 commands"},
    };
    for (const auto& c : cases) {
        QString error;
        const auto options = parseTapOptions(c.arguments, error);
        ASSERT_TRUE(options) << error.toStdString();
        EXPECT_EQ(closingLine(since, until, *options, c.commands),
                  "; learned by larkspur-tap from 2026-01-05 10:00:00 to 2026-01-05 10:04:31 on "
                  "the " +
                      c.link);
    }
}

} // namespace
