// larkspur-run --report: the page of a dry run and of a run over TCP, and the progress line.
#include "common/player_fixture.h"
#include "report_checks.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur::test;

namespace {

using Report = PlayerFixture;

// A run with a refused frame and a failed wait: the page lists both, draws both, and counts
// the commands and failures the JUnit report counts.
TEST_F(Report, ListsAndDrawsEveryFailureAndCountsAsTheJunitReport) {
    const QString shortScript = script("CHK1   101\r\nWAIT STS2   101 1\r\n;\r\n");
    struct Case {
        const char* name;
        bool dryRun;
        QString script;
        QStringList pbx;
        QString failedWait;
    } cases[] = {
        {"dry run of the hotel example",
         true,
         example("hotel.txt"),
         {"--on-frame", "nak,ack", "--after", "CHK1", "1.5", "STS2   101", "--after", "WKP", "1.5",
          "MR 0001  101"},
         "^failed wait: rti did not come within 50\\d\\d ms$"},
        {"TCP against the simulator",
         false,
         shortScript,
         {"--on-frame", "nak,ack"},
         "^failed wait: sts2 did not come within 10\\d\\d ms$"},
    };
    for (const Case& c : cases) {
        const QString page = home.filePath("report.html");
        const QString junit = home.filePath("junit.xml");
        QStringList arguments = {"--no-settings", "--report", page, "--junit", junit};
        std::optional<PbxSimProcess> sim;
        if (c.dryRun) {
            arguments << "--dry-run" << c.script << c.pbx;
        } else {
            sim.emplace(c.pbx);
            ASSERT_TRUE(sim->start()) << sim->diagnostics().toStdString();
            arguments << "--tcp" << tcp(*sim) << c.script;
        }
        start(arguments);
        EXPECT_EQ(finish(), 1) << c.name << err.toStdString();

        const QStringList failures = checkReportPage(page);
        for (const QString& failure :
             {QStringLiteral("^NAK: check-in room 101 refused after \\d+ ms$"), c.failedWait})
            EXPECT_EQ(failures.filter(QRegularExpression(failure)).size(), 1)
                << c.name << ": " << failure.toStdString() << "\n"
                << failures.join('\n').toStdString();
        const auto pageCounts = counted(readPage(page), "(\\d+) commands played, (\\d+) failed");
        const auto junitCounts = counted(readPage(junit), "tests=\"(\\d+)\" failures=\"(\\d+)\"");
        EXPECT_EQ(pageCounts, junitCounts) << c.name;
        EXPECT_GT(pageCounts.second, 0) << c.name;
        EXPECT_TRUE(readPage(page).contains("<td>1: a command failed</td>")) << c.name;
    }
}

TEST_F(Report, AContinuousRunEndedByASignalWritesItsPage) {
    const QString page = home.filePath("report.html");
    start({"--no-settings", "--dry-run", "--continuous", "--report", page,
           script("CHK1   101\r\n;\r\n")});
    ASSERT_TRUE(waitUntil([this] { return out.count("CHK1   101") >= 3; }, 30'000));
    ::kill(pid_t(run.processId()), SIGTERM);
    EXPECT_EQ(finish(), 130) << err.toStdString();
    checkReportPage(page);
    EXPECT_TRUE(readPage(page).contains("<td>130: interrupted</td>"));
}

TEST_F(Report, AnUnwritableReportIsRefusedBeforeTheRun) {
    start({"--no-settings", "--dry-run", "--report", home.filePath("none/report.html"),
           script("CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 64);
    EXPECT_TRUE(err.contains("larkspur-run: cannot write --report " +
                             home.filePath("none/report.html").toLatin1()))
        << err.toStdString();
}

// The progress line shows on a terminal (a pty `script` gives the run), never in a pipe. The
// run is a real one: a dry run is over before the line is redrawn.
TEST_F(Report, TheProgressLineShowsOnATerminalOnly) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const QString played = script("CHK1   101\r\nCHK0   101\r\n;\r\n");
    const QStringList arguments = {"--no-settings", "--tcp", tcp(sim), played};
    start(arguments);
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_FALSE(err.contains("command 1 of 2")) << err.toStdString();
    EXPECT_FALSE(err.contains('\r'));

    TestProcess terminal;
    QStringList command = {QStringLiteral(LARKSPUR_RUN_PATH)};
    command << arguments;
    terminal.start("script", {"-qec", command.join(' '), "/dev/null"});
    ASSERT_TRUE(terminal.waitForFinished(60'000));
    const QByteArray seen = terminal.readAllStandardOutput();
    EXPECT_TRUE(seen.contains("\rcommand ") && seen.contains(" of 2, 0:00:0"))
        << seen.toStdString();
    EXPECT_TRUE(seen.contains("\r\x1b[Kmessage type")) << "cleared before the end-of-run text";
}

} // namespace
