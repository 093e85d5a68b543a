// larkspur-tap --report: the page of a tapped session.
#include "common/player_fixture.h"
#include "report_checks.h"
#include "tap_process.h"

#include <gtest/gtest.h>

using namespace larkspur::test;

namespace {

using TapReport = PlayerFixture;

TEST_F(TapReport, ListsAndDrawsTheRefusedFrameOfATappedSession) {
    PbxSimProcess sim({"--on-frame", "nak,ack"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const QString page = home.filePath("tap.html");
    TapProcess tap({"--listen", "127.0.0.1:0", "--pbx", tcp(sim), "--once", "--report", page});
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    start({"--no-settings", "--tcp", QStringLiteral("127.0.0.1:%1").arg(tap.port()),
           script("CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(tap.waitForExit(), 0) << tap.diagnostics();

    const QStringList failures = checkReportPage(page);
    EXPECT_EQ(failures.filter(QRegularExpression("^NAK: check-in room 101 refused after \\d+ ms$"))
                  .size(),
              1)
        << failures.join('\n').toStdString();
    EXPECT_TRUE(readPage(page).contains("<td>0: clean</td>"));
}

} // namespace
