#pragma once

#include "common/recording_operator.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "doubles/simulated_pbx.h"
#include "link/link.h"
#include "records/traffic_log.h"

#include <gtest/gtest.h>

namespace larkspur::test {

inline QByteArray bytes(const char* text) {
    return QByteArray(text);
}
inline const QByteArray ENQ(1, 5), ACK(1, 6), NAK(1, 21);
inline QByteArray frame(const QByteArray& body) {
    return '\x02' + body + '\x03';
}

// A link in virtual time with a simulated PBX on each transport, open and in HOTEL mode.
class LinkFixture : public ::testing::Test {
protected:
    VirtualEventPump pump;
    TrafficLog log;
    RecordingOperator op;
    FakeTransport tcp{pump, QStringLiteral("TCP fake")};
    FakeTransport serial{pump, QStringLiteral("serial fake")};
    Link link{pump, log, op, tcp, serial};
    SimulatedPbx tcpPbx{pump, tcp};
    SimulatedPbx serialPbx{pump, serial};

    void SetUp() override {
        tcp.connectToHost(QStringLiteral("127.0.0.1"), 15374);
        serial.openPort(QStringLiteral("/dev/ttyS0"));
        pump.processEvents();
        tcp.calls.clear();
        serial.calls.clear();
        tcp.written.clear();
        serial.written.clear();
    }

    void useSerial() { link.settings().useTcp = false; }

    // The log as lines, without the last empty one.
    QStringList lines() const {
        QStringList l = log.logText().split(QStringLiteral("\r\n"));
        if (!l.isEmpty() && l.last().isEmpty())
            l.removeLast();
        return l;
    }
    FakeTransport& active() { return link.settings().useTcp ? tcp : serial; }
};

} // namespace larkspur::test
