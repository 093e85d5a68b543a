// A PBX that hangs up: every wait ends at once, nothing more is tried, and the controls go to the
// disconnected state so the operator can connect again.
#include "common/script_fixture.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using Outcome = ScriptEngine::RunOutcome;

namespace {

class LostLink : public ScriptFixture {};

TEST_F(LostLink, EndsATransactionWhereItStands) {
    pbx.options.onFrame = sim::Answer::Silent;
    tcp.loseLink("closed by the PBX", 2500);
    QSignalSpy ended(&session.events(), &SessionEvents::transactionEnded);
    click({{Field::txt_suite_1, "101"}, {Field::txt_suite_2, "102"}}, Control::cmd_chk_in);
    EXPECT_LT(pump.elapsedMs(), 3000) << "not five sends of five seconds each";
    EXPECT_EQ(lines(),
              QStringList({"Sending -->    ENQ", "Received--> ACK", "Sending     -->CHK1   101"}));
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_TRUE(session.errors().errorReport().isEmpty());
    ASSERT_EQ(ended.size(), 1);
    EXPECT_EQ(ended[0][0].value<SendResult>(), SendResult::Interrupted);
    EXPECT_FALSE(enabled("cmd_chk_in"));
    EXPECT_TRUE(enabled("cmd_connect"));
    EXPECT_FALSE(enabled("cmd_disconnect"));
}

TEST_F(LostLink, EndsAWaitWithoutLimitAndTheScript) {
    tcp.loseLink("closed by the PBX", 4000);
    EXPECT_EQ(play("WAIT STS2   101 0\r\nCHK1   101\r\nCHK0   101\r\n;\r\n"), Outcome::Cancelled);
    EXPECT_LE(pump.elapsedMs(), 4000 + 1000) << "the wait ends, then the pause between commands";
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_EQ(lines().last(), "Script cancelled...");
}

TEST_F(LostLink, EndsTheConnectionTest) {
    session.cmd_disconnect();
    pbx.options.onEnq = sim::Answer::Silent;
    pump.schedule(3000, [&] { tcp.loseLink("connection reset"); });
    EXPECT_EQ(session.cmd_connect(), Link::ConnectResult::Lost);
    EXPECT_LT(pump.elapsedMs(), 5000) << "not ten ENQs of five seconds each";
    EXPECT_FALSE(lines().contains("No response from PBX"));

    // Connect is there again, and works once the PBX is back.
    pbx.options.onEnq = sim::Answer::Ack;
    EXPECT_EQ(session.cmd_connect(), Link::ConnectResult::Connected);
    EXPECT_FALSE(session.link().interrupted());
}

TEST_F(LostLink, VoiceMailFrameGetsNoVerdict) {
    session.link().setMode(PmsMode::Vmail, session.link().protocolType());
    pbx.setMode(sim::Mode::Vmail);
    pbx.options.onFrame = sim::Answer::Silent;
    tcp.loseLink("closed by the PBX", 500);
    pump.schedule(600, [&] { pump.requestStop(); }); // as larkspur-run does on a lost link
    click({{Field::txt_ls_pilot, "4001"}}, Control::cmd_chk_out);
    EXPECT_LT(pump.elapsedMs(), 1000);
    EXPECT_FALSE(lines().contains("DID NOT RECEIVE ACK FROM PBX!"));
    EXPECT_TRUE(session.recorder().scriptText().isEmpty());
    pump.clearStop();
}

} // namespace
