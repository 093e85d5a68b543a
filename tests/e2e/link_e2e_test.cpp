// The link against the real simulator process, over loopback TCP and over a pty pair: what
// only a real line shows (the rest is played through larkspur-run).
#include "common/pbxsim_process.h"
#include "common/recording_operator.h"
#include "core/qt_event_pump.h"
#include "link/link.h"
#include "link/real_transports.h"
#include "records/traffic_log.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class LinkEndToEnd : public ::testing::Test {
protected:
    QtEventPump pump;
    TrafficLog log;
    RecordingOperator op;
    RealTcpTransport tcp;
    RealSerialTransport serial;
    Link link{pump, log, op, tcp, serial};

    QStringList lines() const {
        QStringList l = log.logText().split(QStringLiteral("\r\n"));
        l.removeAll(QString());
        return l;
    }
    void overTcp(const PbxSimProcess& sim) {
        link.settings().useTcp = true;
        link.settings().ipAddress = "127.0.0.1";
        link.settings().telnetPort = QString::number(sim.port());
    }
    void overPty(const PbxSimProcess& sim) {
        link.settings().useTcp = false;
        link.settings().commPortNumber = sim.ptyPath();
        link.settings().speed = "9600";
        link.settings().parity = "N";
        link.settings().dataBits = "8";
        link.settings().stopBits = "1";
    }
    bool logged(const QString& line) {
        return waitUntil([&] { return lines().contains(line); });
    }
};

TEST_F(LinkEndToEnd, ConnectOverTcpInVmailMode) {
    PbxSimProcess sim({"--mode", "VMAIL"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    overTcp(sim);
    link.setMode(PmsMode::Vmail, link.protocolType());
    link.setMode(link.pmsMode(), Protocol::His);
    ASSERT_EQ(link.cmd_connect(5), Link::ConnectResult::Connected);
    EXPECT_EQ(lines(), QStringList({"Connecting...", "12", "PBX ACKed", "Connected..."}));
    ASSERT_TRUE(sim.waitForTraceLines(2));
    EXPECT_EQ(sim.traceLines(), QStringList({"RX <STX>1<ETX>2", "TX <ACK>"}));
}

TEST_F(LinkEndToEnd, ConnectOverAPtyAsASerialPort) {
    PbxSimProcess sim({"--pty"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    overPty(sim);
    ASSERT_EQ(link.cmd_connect(), Link::ConnectResult::Connected)
        << op.notices.join("; ").toStdString();
    EXPECT_EQ(lines(), QStringList({"Connecting...", "Sending -->    ENQ", "Received--> ACK",
                                    "Connected..."}));
    ASSERT_TRUE(sim.waitForTraceLines(2));
    EXPECT_EQ(sim.traceLines(), QStringList({"RX <ENQ>", "TX <ACK>"}));
    link.cmd_disconnect();
    EXPECT_FALSE(link.isOpen());
}

TEST_F(LinkEndToEnd, EnqFromThePbxIsAnsweredOverTcpOnly) {
    PbxSimProcess tcpSim;
    ASSERT_TRUE(tcpSim.start()) << tcpSim.diagnostics().toStdString();
    overTcp(tcpSim);
    ASSERT_EQ(link.cmd_connect(5), Link::ConnectResult::Connected);
    tcpSim.writeLine("<ENQ>");
    ASSERT_TRUE(tcpSim.waitForTraceLines(4)) << tcpSim.traceLines().join(", ").toStdString();
    EXPECT_EQ(tcpSim.traceLines().mid(2), QStringList({"TX <ENQ>", "RX <ACK>"}));
    EXPECT_EQ(lines().mid(3), QStringList({"Received--> ENQ", "Sending -->    ACK"}));
    link.cmd_disconnect();

    log = TrafficLog();
    PbxSimProcess ptySim({"--pty"});
    ASSERT_TRUE(ptySim.start()) << ptySim.diagnostics().toStdString();
    overPty(ptySim);
    ASSERT_EQ(link.cmd_connect(), Link::ConnectResult::Connected);
    ptySim.writeLine("<ENQ>");
    ASSERT_TRUE(logged("Received--> ENQ")) << lines().join(", ").toStdString();
    // The answer would already be on its way; give it a moment to show up in the trace.
    waitUntil([] { return false; }, 200);
    EXPECT_EQ(ptySim.traceLines(), QStringList({"RX <ENQ>", "TX <ACK>", "TX <ENQ>"}));
    EXPECT_FALSE(lines().contains("Sending -->    ACK"));
}

} // namespace
