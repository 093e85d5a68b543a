// larkspur-run --check and --dry-run: a script checked without a link, and played against the
// simulator inside the process as it plays against the real one.
#include "common/player_fixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cmath>

using namespace larkspur::test;

namespace {

using Player = PlayerFixture;

// The simulator options the hotel example names in its first comment lines.
const QStringList hotelPbx = {"--after", "CHK1", "1.5", "STS2   101",
                              "--after", "WKP",  "1.5", "MR 0001  101",
                              "--after", "CHK0", "1.5", "<STX>RQINZ     <ETX>"};

TEST_F(Player, CheckExitsByWhatItFinds) {
    struct Case {
        const char* name;
        QByteArray script;
        int status;
        const char* mustPrint;
    } cases[] = {
        {"clean", "CHK1   101\r\n;\r\n", 0, "clean: every command plays as written"},
        {"a file ending in a command", "CHK1   101\r\nCHK0   101\r\n", 1,
         "line 2: warning: the file's last line is never played: \"CHK0   101\""},
        {"a misaligned NAM line", "NAM1 Smith                101\r\nCHK1   101\r\n;\r\n", 3,
         "line 1: warning: NAM1 fills columns 1-31, but the line is 29 characters long: the next "
         "command is read from line 2, column 3"},
        {"an unknown expectation", "WAIT xyz 5\r\n;\r\n", 3,
         "line 1: stop: \"xyz \" is no command the runner knows"},
        {"a voice-mail line without ~",
         "VMAILHIS\r\n\x02"
         "24001  \x03"
         "4\r\n;\r\n",
         3, "line 2: stop: no \"~\" after its frame"},
    };
    for (const Case& c : cases) {
        out.clear();
        err.clear();
        start({"--check", script(c.script)});
        EXPECT_EQ(finish(), c.status) << c.name << "\n" << out.toStdString();
        EXPECT_TRUE(out.contains(c.mustPrint)) << c.name << "\n" << out.toStdString();
        EXPECT_TRUE(err.isEmpty()) << c.name << "\n" << err.toStdString();
    }
    out.clear();
    start({"--check", home.filePath("missing.txt")});
    EXPECT_EQ(finish(), 3);
    EXPECT_TRUE(err.contains("cannot read")) << err.toStdString();
}

TEST_F(Player, CheckSpeaksJson) {
    start({"--check", "--json", script("CHK1   101\r\nWAIT ATL   101 5\r\n;\r\nCHK0   101\r\n")});
    EXPECT_EQ(finish(), 3);
    QJsonParseError error{};
    const QJsonObject report = QJsonDocument::fromJson(out, &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << out.toStdString();
    EXPECT_EQ(report["verdict"].toString(), "stops");
    EXPECT_EQ(report["mode"].toString(), "HOTEL");
    const QJsonArray commands = report["commands"].toArray();
    ASSERT_EQ(commands.size(), 3);
    const QJsonObject room = commands[0]["fields"].toArray()[0].toObject();
    EXPECT_EQ(room["label"].toString(), "room");
    EXPECT_EQ(room["control"].toString(), "txt_suite_1");
    EXPECT_EQ(room["firstColumn"].toInt(), 6);
    EXPECT_EQ(room["lastColumn"].toInt(), 10);
    EXPECT_EQ(room["text"].toString(), "  101");
    QStringList kinds;
    for (const QJsonValue& finding : report["findings"].toArray())
        kinds << finding["kind"].toString();
    EXPECT_EQ(kinds, QStringList({"passed-over", "unrecognized", "comment", "last-line"}));
}

TEST_F(Player, WorkbenchOptionsRefuseWhatDoesNotApply) {
    const QString s = script("CHK1   101\r\n;\r\n");
    const QList<QStringList> cases = {
        {"--json", s},
        {"--check", "--tcp", "127.0.0.1:1", s},
        {"--check", "--dry-run", s},
        {"--dry-run", s, "--listen", "127.0.0.1:1"},
        {"--dry-run", s, "--pty"},
        {"--dry-run", s, "--on-enq", "maybe"},
    };
    for (const QStringList& arguments : cases) {
        err.clear();
        start(arguments);
        EXPECT_EQ(finish(), 64) << arguments.join(' ').toStdString();
        EXPECT_TRUE(err.contains("usage: larkspur-run")) << err.toStdString();
    }
}

// The durations a JUnit report gives: its whole suite's first, then each case's.
QList<double> reportedSeconds(const QString& junit) {
    QFile report(junit);
    if (!report.open(QIODevice::ReadOnly))
        return {};
    const QString xml = QString::fromUtf8(report.readAll());
    QList<double> seconds;
    const QRegularExpression timed(QStringLiteral("<test(?:suite|case) [^>]*time=\"([0-9.]+)\""));
    for (const QRegularExpressionMatch& m : timed.globalMatch(xml))
        seconds << m.captured(1).toDouble();
    return seconds;
}

// Part of the hotel example: its waits and notice, and transactions of each shape.
const QByteArray shortHotel = "CHK1   101\r\n"
                              "WAIT STS2   101 5\r\n"
                              "NAM4 Jones                  101  102\r\n"
                              "WKP0730  101\r\n"
                              "NTFY MR 0001  101 5\r\n"
                              "STE0   101   102   103\r\n"
                              "CHK0   101\r\n"
                              "WAIT rti 5\r\n"
                              ";\r\n";

TEST_F(Player, DryRunPrintsTheTrafficOfARealRunAndTakesItsTime) {
    // The real PBX takes a few milliseconds to answer, as a real one does (over loopback an
    // instant answer may or may not be there at the console's first look, and the run's length
    // would follow that race); the rehearsal keeps the simulator's default of answering at once.
    PbxSimProcess sim(hotelPbx + QStringList{"--answer-delay", "0.005"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const QString realJunit = home.filePath("real.xml"), dryJunit = home.filePath("dry.xml");
    const QString played = script(shortHotel);
    start({"--tcp", tcp(sim), "--junit", realJunit, played});
    ASSERT_EQ(finish(), 0) << err.toStdString();
    const QStringList realLog = outLines();
    EXPECT_FALSE(err.contains("dry run"));

    out.clear();
    err.clear();
    // The address names the link the console believes it has; nothing is connected to it.
    start(QStringList{"--dry-run", "--tcp", "127.0.0.1:9", "--junit", dryJunit, played} + hotelPbx);
    ASSERT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(outLines(), realLog);
    EXPECT_TRUE(errLines().first().startsWith("larkspur-run: dry run")) << err.toStdString();
    EXPECT_TRUE(errLines().contains("larkspur-run: Script file completed"));
    const QList<double> real = reportedSeconds(realJunit), dry = reportedSeconds(dryJunit);
    ASSERT_EQ(dry.size(), real.size());
    ASSERT_EQ(real.size(), 9) << "the suite and its eight commands";
    // The same pauses and waits: each command within a step of 0.1 s of its real length (a
    // busy machine or the sanitizers make the real clock's steps end late, never the dry run's).
    for (qsizetype i = 1; i < real.size(); ++i)
        EXPECT_LE(std::abs(std::lround(dry[i] * 10) - std::lround(real[i] * 10)), 1)
            << "case " << i << ": " << dry[i] << " s dry, " << real[i] << " s real";
}

TEST_F(Player, DryRunRehearsesFailures) {
    struct Case {
        QStringList pbx;
        int status;
        const char* mustReport;
    } cases[] = {
        {{"--on-enq", "silent"}, 2, "No response from PBX"},
        // Five refusals use up the first frame's tries; the second frame goes through.
        {{"--on-frame", "nak,nak,nak,nak,nak,ack"}, 1, "There were 1 Errors"},
    };
    for (const Case& c : cases) {
        out.clear();
        err.clear();
        start(QStringList{"--dry-run", "--tcp", "127.0.0.1:9",
                          script("CHK1   101\r\nCHK0   101\r\n;\r\n")} +
              c.pbx);
        EXPECT_EQ(finish(), c.status) << c.pbx.join(' ').toStdString() << err.toStdString();
        EXPECT_TRUE(out.contains(c.mustReport) || err.contains(c.mustReport))
            << c.pbx.join(' ').toStdString() << "\n"
            << out.toStdString() << err.toStdString();
    }
}

TEST_F(Player, DryRunPlaysAThousandCommandsInVirtualTime) {
    // 1,000 commands: 1,000 s of pacing and 2,000 answers of 0.2 s each, in virtual time (how
    // fast is measured in bench/, not here).
    QByteArray commands;
    for (int i = 0; i < 1000; ++i)
        commands += (i % 2 ? "CHK0 " : "CHK1 ") +
                    QByteArray::number(100 + i % 400).rightJustified(5) + "\r\n";
    start(
        {"--dry-run", "--tcp", "127.0.0.1:9", script(commands + ";\r\n"), "--answer-delay", "0.2"});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(out.count("Received--> ACK"), 2001); // the connection test's and two a command
}

} // namespace
