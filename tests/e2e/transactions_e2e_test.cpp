// Transactions through the real link against the simulator: the bytes it traced are the bytes
// the session meant to send.
#include "common/pbxsim_process.h"
#include "common/recording_operator.h"
#include "core/qt_event_pump.h"
#include "link/real_transports.h"
#include "transactions/session.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class TransactionsEndToEnd : public ::testing::Test {
protected:
    QtEventPump pump;
    RecordingOperator op;
    RealTcpTransport tcp;
    RealSerialTransport serial;
    Session session{pump, op, tcp, serial};

    void connectTo(const PbxSimProcess& sim) {
        session.link().settings().ipAddress = "127.0.0.1";
        session.link().settings().telnetPort = QString::number(sim.port());
        ASSERT_EQ(session.cmd_connect(5), Link::ConnectResult::Connected);
    }
};

TEST_F(TransactionsEndToEnd, HotelCheckInNameCheckOut) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    connectTo(sim);
    session.fields().setText(Field::txt_suite_1, "101");
    session.press(Control::cmd_chk_in);
    session.fields().setText(Field::Text1, "Smith");
    session.press(Control::cmd_name_1);
    session.press(Control::cmd_chk_out);
    const QStringList expected = {
        "RX <ENQ>",
        "TX <ACK>", // connection test
        "RX <ENQ>",
        "TX <ACK>",
        "RX <STX>CHK1   101<ETX>",
        "TX <ACK>",
        "RX <ENQ>",
        "TX <ACK>",
        "RX <STX>NAM1 Smith                  101<ETX>",
        "TX <ACK>",
        "RX <ENQ>",
        "TX <ACK>",
        "RX <STX>CHK0   101<ETX>",
        "TX <ACK>",
    };
    ASSERT_TRUE(sim.waitForTraceLines(expected.size()));
    EXPECT_EQ(sim.traceLines(), expected);
    EXPECT_EQ(session.errors().errorCount(), 0);
}

TEST_F(TransactionsEndToEnd, VoiceMailCheckIn) {
    PbxSimProcess sim({"--mode", "VMAIL"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    session.link().setMode(PmsMode::Vmail, session.link().protocolType());
    session.link().setMode(session.link().pmsMode(), Protocol::His);
    connectTo(sim);
    session.fields().setText(Field::txt_ls_pilot, "4001");
    session.press(Control::cmd_chk_in);
    ASSERT_TRUE(sim.waitForTraceLines(4));
    // Body "24001  ", then ETX and the check character 0x34 ("4").
    EXPECT_EQ(sim.traceLines(),
              QStringList({"RX <STX>1<ETX>2", "TX <ACK>", "RX <STX>24001  <ETX>4", "TX <ACK>"}));
    EXPECT_TRUE(sim.statusLines().contains("# BCC ok"));
}

} // namespace
