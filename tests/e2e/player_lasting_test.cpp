// larkspur-run as nightly jobs and week-long soaks use it: across midnight, through signals
// and a closed standard output, onto a full disk, and at a flat footprint.
#include "common/peak_memory.h"
#include "common/player_fixture.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur::test;

namespace {

using Lasting = PlayerFixture;

QByteArray repeated(const QByteArray& line, int times) {
    QByteArray out;
    for (int i = 0; i < times; ++i)
        out += line;
    return out + ";\r\n";
}

// When each wait timed out, by the run's own clock, from its error report.
QList<QDateTime> timeOuts(const QString& errorReport) {
    static const QRegularExpression record(
        QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d): Time expired"));
    QFile f(errorReport);
    f.open(QIODevice::ReadOnly);
    QList<QDateTime> times;
    for (const QString& line : QString::fromLatin1(f.readAll()).split(u'\n')) {
        const QRegularExpressionMatch match = record.match(line);
        if (match.hasMatch())
            times << QDateTime::fromString(match.captured(1),
                                           QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    }
    return times;
}

TEST_F(Lasting, WaitsKeepTheirLengthAcrossMidnight) {
    const QDate day(2026, 1, 5);
    const QDateTime midnight(day.addDays(1), QTime(0, 0));
    const QString errors = home.filePath("errors.txt");

    // A dry run whose clock starts ten seconds before midnight: five waits of nine seconds.
    startAt(QDateTime(day, QTime(23, 59, 50)),
            {"--dry-run", "--error-report", errors,
             script(repeated("WAIT STS1   101 9\r\nCHK1   101\r\n", 5))});
    EXPECT_EQ(finish(30'000), 1) << err.toStdString();
    EXPECT_EQ(outLines().count("Time expired.  Did not receive--> sts1"), 5);
    const QList<QDateTime> dryRun = timeOuts(errors);
    ASSERT_EQ(dryRun.size(), 5);
    EXPECT_GT(dryRun.last(), midnight);
    for (qsizetype i = 1; i < dryRun.size(); ++i)
        EXPECT_GE(dryRun[i - 1].secsTo(dryRun[i]), 9) << i;

    // A real run against a PBX that says nothing, started two seconds before midnight.
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    out.clear();
    startAt(QDateTime(day, QTime(23, 59, 58)),
            {"--tcp", tcp(sim), "--error-report", errors, script("WAIT STS1   101 3\r\n;\r\n")});
    EXPECT_EQ(finish(30'000), 1) << err.toStdString();
    EXPECT_TRUE(outLines().contains("Time expired.  Did not receive--> sts1"));
    const QList<QDateTime> realRun = timeOuts(errors);
    ASSERT_EQ(realRun.size(), 1);
    EXPECT_GE(realRun.first(), midnight.addSecs(1)) << "three seconds from 23:59:58 at least";
}

TEST_F(Lasting, WaitsKeepTheirLengthPastTheFirstDay) {
    // 9,000 waits of nine seconds, each timing out, and the pauses between them, are more than
    // a virtual day.
    start({"--dry-run", script(repeated("WAIT STS1   101 9\r\n", 9000))});
    EXPECT_EQ(finish(), 1) << err.toStdString();
    EXPECT_EQ(outLines().count("Time expired.  Did not receive--> sts1"), 9000);
}

TEST_F(Lasting, OneSignalEndsAnyWaitAndTheReportsAreWritten) {
    PbxSimProcess sim({"--on-frame", "silent"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const struct {
        const char* name;
        int signal;
        QByteArray script;
        const char* waitingAfter; // the log line after which the run waits
        int status;
    } cases[] = {
        {"SIGINT in a wait without limit", SIGINT, "WAIT STS1   101 0\r\nCHK1   101\r\n;\r\n",
         "waiting for --> sts1", 130},
        {"SIGTERM in a check-out the PBX never answers", SIGTERM, "CHK0   101\r\n;\r\n",
         "Sending   -->CHK0   101", 130},
        {"SIGHUP: the SSH session dropped", SIGHUP, "WAIT STS1   101 0\r\n;\r\n",
         "waiting for --> sts1", 129},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        out.clear();
        err.clear();
        const QString junit = home.filePath("report.xml");
        const QString log = home.filePath("run.log");
        const QString errors = home.filePath("errors.txt");
        QFile::remove(junit);
        start({"--tcp", tcp(sim), "--junit", junit, "--save-log", log, "--error-report", errors,
               script(c.script)});
        ASSERT_TRUE(waitUntil([&] { return out.contains(c.waitingAfter); }, 10'000))
            << out.toStdString();
        ::kill(pid_t(run.processId()), c.signal);
        // Without a wait that ends at once, the check-out would take its 25 s of retries.
        EXPECT_EQ(finish(10'000), c.status) << err.toStdString();
        if (c.signal == SIGINT) {
            EXPECT_TRUE(outLines().contains("Script cancelled...")) << out.toStdString();
            EXPECT_FALSE(out.contains("CHK1   101")) << "nothing plays after the interrupt";
        }
        EXPECT_TRUE(QFile::exists(junit));
        EXPECT_TRUE(QFile(log).size() > 0);
        EXPECT_TRUE(QFile::exists(errors));
    }
}

TEST_F(Lasting, AClosedStandardOutputOnlyStopsTheTrafficLog) {
    const QString junit = home.filePath("report.xml");
    startPipedInto("head -3", {"--dry-run", "--junit", junit,
                               script(repeated("CHK1   101\r\nCHK0   101\r\n", 50))});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(outLines().size(), 3);
    EXPECT_TRUE(err.contains("standard output is closed")) << err.toStdString();
    EXPECT_TRUE(err.contains("Script file completed"));
    QFile report(junit);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_TRUE(report.readAll().contains("tests=\"100\""));
}

TEST_F(Lasting, WhatCannotBeWrittenWholeIsNamedAndEndsWithItsOwnStatus) {
    const QByteArray refused = "CHK1   101\r\nCHK0   101\r\n;\r\n";
    const struct {
        QStringList options;
        const char* named;
    } cases[] = {
        {{}, "cannot write the traffic log on standard output: No space left on device"},
        {{"--save-log", "/dev/full"}, "cannot write the log file /dev/full: No space left"},
        {{"--error-report", "/dev/full"}, "cannot write the error report /dev/full: No space"},
        {{"--trace", "/dev/full"}, "cannot write the trace /dev/full: No space left"},
        {{"--junit", "/dev/full"}, "cannot write the JUnit report /dev/full: No space left"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.named);
        out.clear();
        err.clear();
        run.setStandardOutputFile(c.options.isEmpty() ? "/dev/full" : "/dev/null");
        start(QStringList{"--dry-run"} + c.options +
              QStringList{script(refused), "--on-frame", "nak"});
        EXPECT_EQ(finish(), 5) << err.toStdString();
        EXPECT_TRUE(err.contains(c.named)) << err.toStdString();
    }
}

TEST_F(Lasting, ACheckThatCannotBeWrittenWholeEndsWithItsOwnStatus) {
    run.setStandardOutputFile("/dev/full");
    start({"--check", script("CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 5);
    EXPECT_TRUE(err.contains("cannot write the check on standard output: No space left"))
        << err.toStdString();
}

TEST_F(Lasting, TheSimulatorOutlivesItsClosedStandardOutput) {
    // larkspur-pbxsim | head -1: the line that names the port, then nobody reads.
    TestProcess sim, head;
    sim.setStandardOutputProcess(&head);
    sim.start(PbxSimProcess::program(), {"--listen", "127.0.0.1:0"});
    head.start("head", {"-1"});
    ASSERT_TRUE(head.waitForFinished(10'000));
    const QByteArray first = head.readAllStandardOutput().trimmed();
    const quint16 port = quint16(first.mid(first.lastIndexOf(':') + 1).toUInt());
    ASSERT_NE(port, 0) << first.toStdString();
    for (int round = 0; round < 2; ++round) {
        start({"--tcp", QStringLiteral("127.0.0.1:%1").arg(port), script("CHK1   101\r\n;\r\n")});
        EXPECT_EQ(finish(), 0) << err.toStdString();
    }
    EXPECT_EQ(sim.state(), QProcess::Running) << "the simulator ended";
}

// The peak resident memory of a dry run of `script` with every report on, in kilobytes.
long peakKilobytesPlaying(const QString& script, const QString& home) {
    QList<QByteArray> arguments = {"--dry-run"};
    for (const char* report : {"--junit", "--save-log", "--error-report", "--trace"})
        arguments << report << QFile::encodeName(home + "/" + (report + 2));
    arguments << QFile::encodeName(script) << "--after"
              << "CHK1"
              << "1.5"
              << "STS2   101";
    return peakKilobytesOfRun(arguments, home, 0);
}

TEST_F(Lasting, ThreeThousandRoundsCostNoMoreMemoryThanTen) {
#ifdef LARKSPUR_SANITIZE
    GTEST_SKIP() << "the sanitizers' shadow memory would count in";
#endif
    const QByteArray round =
        "CHK1   101\r\nWAIT STS2   101 5\r\nNAM1 Smith                  101\r\n"
        "MW 1   101\r\nLMT1   101   500\r\nWKP0730  101\r\nSTE0   101   102\r\n"
        "CHK0   101\r\n";
    const long ten = peakKilobytesPlaying(file("ten.txt", repeated(round, 10)), home.path());
    const long thousand =
        peakKilobytesPlaying(file("thousand.txt", repeated(round, 3000)), home.path());
    ASSERT_GT(ten, 0);
    ASSERT_GT(thousand, 0);
    // The script itself is 100 KB; everything per command goes to the report files.
    EXPECT_LE(thousand - ten, 2 * 1024)
        << "10 rounds " << ten << " KB, 1000 rounds " << thousand << " KB";
}

} // namespace
