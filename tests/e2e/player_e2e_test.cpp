// larkspur-run against the real simulator over loopback TCP: exit statuses and output.
#include "common/player_fixture.h"
#include "protocol/readable_notation.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur::test;

namespace {

using Player = PlayerFixture;

TEST_F(Player, ExamplesRunClean) {
    // Rehearsed in virtual time against the simulator each example names; the hotel example is
    // played for real in the dry run's own test and on a paced serial line.
    struct Case {
        const char* file;
        QStringList mustLog;
    } cases[] = {
        {"hotel.txt",
         {"successfully received --> sts2", "successfully received --> mr",
          "successfully received --> rti", "Sending     -->CHK1   101", "Sending   -->CHK0   101"}},
        {"vmail.txt", {"CHECK IN: 4001  ", "CHECK OUT: 4002  ", "PBX ACKed"}},
    };
    for (auto& c : cases) {
        const QString path = example(c.file);
        const QStringList simArgs = simulatorArgumentsOf(path);
        ASSERT_FALSE(simArgs.isEmpty()) << c.file;
        out.clear();
        err.clear();
        start(QStringList{"--dry-run", path} + simArgs);
        EXPECT_EQ(finish(), 0) << c.file << "\n" << err.toStdString();
        EXPECT_TRUE(errLines().contains("larkspur-run: Script file completed")) << c.file;
        for (const QString& line : c.mustLog)
            EXPECT_TRUE(outLines().contains(line)) << c.file << ": " << line.toStdString();
        EXPECT_FALSE(out.contains("Time expired")) << c.file;
        EXPECT_FALSE(out.contains("DID NOT")) << c.file;
        EXPECT_EQ(outLines().last(), "Disconnected...");
    }
}

TEST_F(Player, RefusedFramesExitOneWithTheCount) {
    PbxSimProcess sim({"--on-frame", "nak"});
    ASSERT_TRUE(sim.start());
    const QString junit = home.filePath("report.xml");
    start({"--tcp", tcp(sim), "--junit", junit, script("CHK0   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 1) << err.toStdString();
    EXPECT_TRUE(errLines().contains(
        "larkspur-run: Script file ended!  There were 1 Errors View Log for details"))
        << err.toStdString();
    QFile report(junit);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QByteArray xml = report.readAll();
    EXPECT_TRUE(xml.contains("tests=\"1\" failures=\"1\"")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("PBX DID NOT ACKnowkledge the Check out message:"));
}

TEST_F(Player, AConverterThatJoinsMessagesIsSplitOnlyWhenAsked) {
    // The PBX's STS2 and MW reach the console in one read, as a converter gathers them into one
    // TCP segment, while the script waits for the MW.
    const QStringList joining = {"--after", "CHK1", "2",
                                 "<STX>STS2   101<ETX><STX>MW 1   101<ETX>"};
    const QByteArray plays = "CHK1   101\r\nWAIT MW 1   101 5\r\n;\r\n";
    for (const bool split : {false, true}) {
        out.clear();
        err.clear();
        QStringList arguments = QStringList{"--no-settings", "--dry-run", script(plays)} + joining;
        if (split)
            arguments.prepend("--split-joined");
        start(arguments);
        finish();
        const QStringList log = outLines();
        if (split) {
            EXPECT_TRUE(log.contains("Received--> STS2   101")) << out.toStdString();
            EXPECT_TRUE(log.contains("but recieved --> STS2   101"));
            EXPECT_TRUE(log.contains("Received--> MW 1   101"));
            EXPECT_TRUE(log.contains("successfully received --> mw1"));
            EXPECT_EQ(log.count("Sending -->    ACK"), 2) << "each message answered";
        } else {
            EXPECT_TRUE(log.contains("Received--> STS2   101MW 1   101")) << out.toStdString();
            EXPECT_EQ(log.count("Sending -->    ACK"), 1) << "one text, answered once";
            EXPECT_TRUE(log.contains("Time expired.  Did not receive--> mw1"));
        }
    }
}

TEST_F(Player, TheStatusFailsWithEveryFailedCaseWhileTheEndNoticeCountsTransactionsOnly) {
    // Each message comes a second into the wait: the pause after the check-in takes the first.
    const QString completed = "larkspur-run: Script file completed";
    const struct {
        const char* name;
        QByteArray script;
        QStringList pbx;
        int status;
        QString endNotice;
        const char* junitCounts;
    } cases[] = {
        {"a plain wait that times out",
         "CHK1   101\r\nWAIT STS2   101 2\r\n;\r\n",
         {},
         1,
         completed,
         "tests=\"2\" failures=\"1\""},
        {"a wait with notice that times out",
         "CHK1   101\r\nNTFY STS2   101 2\r\n;\r\n",
         {},
         1,
         completed,
         "tests=\"2\" failures=\"1\""},
        {"a wait that gets its message",
         "CHK1   101\r\nWAIT STS2   101 3\r\n;\r\n",
         {"--after", "CHK1", "2", "STS2   101"},
         0,
         completed,
         "tests=\"2\" failures=\"0\""},
        {"a wait that sees another message before its own",
         "CHK1   101\r\nWAIT STS2   101 3\r\n;\r\n",
         {"--after", "CHK1", "1.5", "STS1   101", "--after", "CHK1", "2", "STS2   101"},
         1,
         completed,
         "tests=\"2\" failures=\"1\""},
        {"a command that sends nothing for an invalid field",
         "CHK1   101\r\nWKP0799  101\r\n;\r\n",
         {},
         1,
         completed,
         "tests=\"2\" failures=\"1\""},
        {"a refused check-out and a wait that times out",
         "CHK0   101\r\nWAIT STS2   101 1\r\n;\r\n",
         {"--on-frame", "nak"},
         1,
         "larkspur-run: Script file ended!  There were 1 Errors View Log for details",
         "tests=\"2\" failures=\"2\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        out.clear();
        err.clear();
        const QString junit = home.filePath("report.xml");
        start(QStringList{"--dry-run", "--junit", junit, script(c.script)} + c.pbx);
        EXPECT_EQ(finish(), c.status) << err.toStdString();
        EXPECT_TRUE(errLines().contains(c.endNotice)) << err.toStdString();
        QFile report(junit);
        ASSERT_TRUE(report.open(QIODevice::ReadOnly));
        const QByteArray xml = report.readAll();
        EXPECT_TRUE(xml.contains(c.junitCounts)) << xml.toStdString();
    }
}

// The rows of a --trace file as "TX <readable>" / "RX <readable>", with each row's note in
// `notes` (rows that are only a note are left out), checking the hex against the readable bytes.
QStringList traceRows(const QString& path, QStringList* notes) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    QStringList rows;
    for (const QString& line : QString::fromLatin1(f.readAll()).split('\n', Qt::SkipEmptyParts)) {
        const QString body = line.mid(13); // after "HH:mm:ss.zzz "
        if (body.startsWith("-- "))
            continue;
        const QString readable = body.section("   | ", 0, 0);
        const QString rest = body.section("   | ", 1);
        const QString hex = rest.section("   ; ", 0, 0);
        notes->append(rest.section("   ; ", 1));
        QString error;
        EXPECT_EQ(QString::fromLatin1(
                      larkspur::parseReadable(readable.mid(3), &error).toHex(' ').toUpper()),
                  hex)
            << line.toStdString();
        rows.append(readable);
    }
    return rows;
}

TEST_F(Player, TraceMatchesTheSimulatorByteForByte) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start());
    const QString trace = home.filePath("trace.txt");
    const QString junit = home.filePath("report.xml");
    start({"--tcp", tcp(sim), "--trace", trace, "--junit", junit, script("CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    QStringList notes;
    const QStringList rows = traceRows(trace, &notes);
    // What the console sent the simulator received, and the other way round.
    QStringList mirrored;
    for (const QString& line : sim.traceLines())
        mirrored << (line.startsWith("RX") ? "TX" : "RX") + line.mid(2);
    EXPECT_EQ(rows, mirrored);
    EXPECT_EQ(rows, QStringList({"TX <ENQ>", "RX <ACK>", "TX <ENQ>", "RX <ACK>",
                                 "TX <STX>CHK1   101<ETX>", "RX <ACK>"}));
    EXPECT_TRUE(notes.filter(QRegularExpression("^ENQ answered in \\d+ ms \\(ACKed\\)$")).size() ==
                2)
        << notes.join(" | ").toStdString();
    EXPECT_EQ(notes.filter(QRegularExpression("^frame ACKed in \\d+ ms$")).size(), 1);

    // The run statistics: on standard error and as JUnit properties.
    EXPECT_TRUE(
        QRegularExpression("check-in +1 +1 +0 +0").match(QString::fromLatin1(err)).hasMatch())
        << err.toStdString();
    QFile report(junit);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QByteArray xml = report.readAll();
    EXPECT_TRUE(xml.contains("<property name=\"check-in.sent\" value=\"1\"/>"))
        << xml.toStdString();
    EXPECT_TRUE(xml.contains("<property name=\"ENQ.acknowledged\" value=\"2\"/>"));
}

TEST_F(Player, TraceFlagsAWrongCheckCharacter) {
    // A voice-mail message from the PBX whose check character is 0 instead of the XOR.
    const QString trace = home.filePath("trace.txt");
    const QByteArray frame = QByteArray("\x02"
                                        "24001  \x03"
                                        "4~");
    start({"--dry-run", "--trace", trace,
           script("VMAILHIS\r\n" + frame + "\r\n" + frame + "\r\n;\r\n"), "--mode", "VMAIL", "--at",
           "2.5", "<STX>54001  <ETX>\\x00"});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    QStringList notes;
    const QStringList rows = traceRows(trace, &notes);
    const qsizetype wrong = rows.indexOf("RX <STX>54001  <ETX>\\x00");
    ASSERT_GE(wrong, 0) << rows.join(", ").toStdString();
    EXPECT_EQ(notes[wrong], "check character wrong");
    const qsizetype sent = rows.indexOf("TX <STX>24001  <ETX>4");
    ASSERT_GE(sent, 0);
    EXPECT_EQ(notes[sent], "check character right");
    EXPECT_TRUE(outLines().contains("BAD MAILBOX ADDRESS: 4001 ")) << out.toStdString();
}

TEST_F(Player, BadArgumentsAndUnreadableScripts) {
    struct Case {
        QStringList arguments;
        int status;
    } cases[] = {
        {{}, 64},
        {{"--bogus", "x"}, 64},
        {{"--tcp", "nohost", "x"}, 64},
        {{"--mode", "hotel", "x"}, 64},
        {{home.filePath("missing.txt")}, 3},
        {{"--help"}, 0},
    };
    for (auto& c : cases) {
        out.clear();
        err.clear();
        start(c.arguments);
        EXPECT_EQ(finish(), c.status) << c.arguments.join(' ').toStdString();
        if (c.status == 64) {
            EXPECT_TRUE(err.contains("usage: larkspur-run")) << err.toStdString();
        }
    }
}

} // namespace
