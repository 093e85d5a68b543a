#include "common/link_fixture.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

class Connection : public LinkFixture {
protected:
    void SetUp() override {} // starts closed
};

// Connecting over TCP in either mode is the end-to-end test's.
TEST_F(Connection, SerialVmailLogsConnectingOnce) {
    useSerial();
    link.setMode(PmsMode::Vmail, link.protocolType());
    serialPbx.setMode(sim::Mode::Vmail);
    QSignalSpy recordingStopped(&link, &Link::recordingStopped);
    EXPECT_EQ(link.cmd_connect(), Link::ConnectResult::Connected);
    EXPECT_EQ(lines(),
              QStringList({"Connecting...", "1            2", "PBX ACKed", "Connected..."}));
    EXPECT_EQ(recordingStopped.count(), 2) << "on opening the port and on success";
}

TEST_F(Connection, SerialAppliesSettingsAndMapsPortNumbers) {
    useSerial();
    struct Case {
        QString port;
        QString device;
    } cases[] = {{"1", "/dev/ttyS0"},
                 {"4", "/dev/ttyS3"},
                 {"/dev/pts/7", "/dev/pts/7"},
                 {"ttyUSB0", "ttyUSB0"}};
    for (auto& c : cases) {
        serial.close();
        serial.calls.clear();
        link.settings().commPortNumber = c.port;
        link.settings().speed = "9600";
        link.settings().parity = "E";
        link.settings().dataBits = "7";
        link.settings().stopBits = "1";
        link.settings().dtrEnabled = true;
        link.cmd_connect();
        EXPECT_EQ(serial.calls, QStringList({"options 9600,E,7,1", "open " + c.device}));
        EXPECT_TRUE(serial.options.dtr);
        EXPECT_FALSE(serial.options.rts);
    }
}

TEST_F(Connection, SerialConnectTwiceDoesNotReopen) {
    useSerial();
    link.cmd_connect();
    link.cmd_connect();
    EXPECT_EQ(serial.calls,
              QStringList({"options 1200,N,8,2", "open /dev/ttyS0", "options 1200,N,8,2"}));
}

TEST_F(Connection, WhatCannotBeOpenedIsANoticeAndNoLog) {
    const struct {
        bool tcp;
        const char* port; // TCP: its port number; serial: its device
        const char* refusal;
        const char* notice;
    } cases[] = {
        {false, "", "", "specify port"},
        {false, "1", "Permission denied", "Cannot open serial port /dev/ttyS0: Permission denied"},
        {true, "70000", "", "TCP port \"70000\" is not a port number from 1 to 65535"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.notice);
        link.settings().useTcp = c.tcp;
        (c.tcp ? link.settings().telnetPort : link.settings().commPortNumber) = c.port;
        serial.refusal = c.refusal;
        op.notices.clear();
        EXPECT_EQ(link.cmd_connect(), Link::ConnectResult::NotOpened);
        EXPECT_EQ(op.notices, QStringList{c.notice});
        EXPECT_FALSE(link.isOpen());
        EXPECT_TRUE(log.logText().isEmpty());
    }
}

TEST_F(Connection, TcpLoopWaitsForThePbxOnceASecond) {
    tcp.acceptAfterMs = 3500;
    EXPECT_EQ(link.cmd_connect(), Link::ConnectResult::Connected);
    EXPECT_GE(pump.elapsedMs(), 3500);
    EXPECT_LE(pump.elapsedMs(), 4000 + 1000) << "seen at the next one-second step, then one poll";
    EXPECT_EQ(tcp.calls, QStringList{"connect 127.0.0.1:15374"})
        << "an attempt under way is not restarted";
}

TEST_F(Connection, DisconnectEndsTheTcpLoop) {
    tcp.acceptAfterMs = -1;
    QSignalSpy disconnected(&link, &Link::disconnected);
    pump.schedule(2500, [&] { link.cmd_disconnect(); });
    EXPECT_EQ(link.cmd_connect(), Link::ConnectResult::NotOpened);
    EXPECT_LT(pump.elapsedMs(), 4000);
    EXPECT_EQ(lines(), QStringList{"Disconnected..."});
    EXPECT_EQ(disconnected.count(), 1);
}

TEST_F(Connection, ConnectLimitBoundsTheTcpLoop) {
    tcp.acceptAfterMs = -1;
    EXPECT_EQ(link.cmd_connect(3), Link::ConnectResult::NotOpened);
    EXPECT_NEAR(pump.elapsedMs(), 3000, 1000);
    EXPECT_TRUE(op.notices.isEmpty());
}

TEST_F(Connection, ConnectLimitUnderASecondIsHonoured) {
    tcp.acceptAfterMs = -1;
    EXPECT_EQ(link.cmd_connect(0.3), Link::ConnectResult::NotOpened);
    EXPECT_GE(pump.elapsedMs(), 300);
    EXPECT_LT(pump.elapsedMs(), 400);
}

TEST_F(Connection, DisconnectClosesTheActiveLink) {
    link.cmd_connect();
    link.cmd_disconnect();
    EXPECT_FALSE(tcp.isOpen());
    EXPECT_EQ(lines().last(), "Disconnected...");
}

} // namespace
