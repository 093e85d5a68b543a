#include "common/link_fixture.h"
#include "link/exchange.h"

using namespace larkspur;
using namespace larkspur::test;

namespace {

class Receiver : public LinkFixture {
protected:
    // Delivers one read to the given transport and lets the receiver handle it, after the frame
    // gap when it is a frame whose end has not come.
    void receive(bool overTcp, const QByteArray& bytes) {
        (overTcp ? tcp : serial).deliver(bytes);
        while (pump.hasPendingDeliveries()) {
            pump.waitForEvent(1000);
            pump.processEvents();
        }
    }
};

TEST_F(Receiver, ClassifiesLogsAndAnswers) {
    const char* untouched = "untouched";
    struct Case {
        const char* name;
        bool tcp;
        const char* mode;
        QByteArray in;
        QStringList logged;
        const char* lastControl;
        bool answered;
    } cases[] = {
        {"ack hotel", true, "HOTEL", ACK, {"Received--> ACK"}, "ACK", false},
        {"ack vmail", false, "VMAIL", ACK, {"PBX ACKed"}, "ACK", false},
        {"enq tcp", true, "HOTEL", ENQ, {"Received--> ENQ", "Sending -->    ACK"}, "ENQ", true},
        {"enq serial", false, "HOTEL", ENQ, {"Received--> ENQ"}, "ENQ", false},
        {"nak", false, "HOTEL", NAK, {"Received--> NAK"}, "NAK", false},
        {"rqinz serial",
         false,
         "HOTEL",
         frame("RQINZ     "),
         {"Received--> RQINZ     "},
         "RTI",
         false},
        {"rqinz tcp", true, "HOTEL", frame("RQINZ     "), {"Received--> RQINZ     "}, "rti", false},
        {"rqinz short",
         true,
         "HOTEL",
         frame("RQINZ    "),
         {"Received--> RQINZ    "},
         "\x02RQINZ    \x03",
         false},
        {"sts",
         true,
         "HOTEL",
         frame("STS1   101"),
         {"Received--> STS1   101", "Sending -->    ACK"},
         "\x02STS1   101\x03",
         true},
        {"mw",
         false,
         "HOTEL",
         frame("MW1  101"),
         {"Received--> MW1  101", "Sending -->    ACK"},
         "\x02MW1  101\x03",
         true},
        {"mr 0001",
         true,
         "VMAIL",
         frame("MR 0001 x"),
         {"Received--> MR 0001 x", "Sending -->    ACK"},
         "\x02MR 0001 x\x03",
         true},
        {"alt1",
         true,
         "HOTEL",
         frame("ALT1"),
         {"Received--> ALT1", "Sending -->    ACK"},
         "\x02"
         "ALT1\x03",
         true},
        {"mr 0002",
         true,
         "HOTEL",
         frame("MR 0002"),
         {"Received--> MR 0002"},
         "\x02MR 0002\x03",
         false},
        {"unknown", true, "HOTEL", frame("XYZ"), {"Received--> XYZ"}, "\x02XYZ\x03", false},
        {"sts without stx", true, "HOTEL", "STS1", {"Received--> STS1"}, "STS1", false},
        {"two messages in one read",
         true,
         "HOTEL",
         ACK + frame("STS1   101"),
         {"Received--> STS1   101"},
         "\x06\x02STS1   101\x03",
         false},
        {"tcp trims blanks", true, "HOTEL", " \x06 ", {"Received--> ACK"}, "ACK", false},
        {"serial keeps blanks", false, "HOTEL", " \x06 ", {"Received-->   "}, " \x06 ", false},
        {"tcp ignores empty", true, "HOTEL", "   ", {}, untouched, false},
        {"serial logs empty", false, "HOTEL", "", {"Received--> "}, "", false},
        {"echo offer", true, "HOTEL", "\xFF\xFB\x01", {"Connecting..."}, untouched, false},
        {"echo offer over serial",
         false,
         "HOTEL",
         "\xFF\xFB\x01",
         {"Received--> "},
         "\xFF\xFB\x01",
         false},
        {"vmail resync",
         true,
         "VMAIL",
         "\x02"
         "1\x03"
         "2",
         {"PBX REQUESTS RESYNCHRONIZE", "Received--> 12"},
         "\x02"
         "1\x03"
         "2",
         false},
        {"vmail bad mailbox",
         true,
         "VMAIL",
         "\x02"
         "54001  \x03x",
         {"BAD MAILBOX ADDRESS: 4001 ", "Received--> 54001  x"},
         "\x02"
         "54001  \x03x",
         false},
        {"vmail bad mailbox too short over tcp",
         true,
         "VMAIL",
         "\x02"
         "5\x03",
         {"Received--> 5"},
         "\x02"
         "5\x03",
         false},
        {"vmail status in hotel mode",
         true,
         "HOTEL",
         "\x02"
         "1\x03"
         "2",
         {"Received--> 12"},
         "\x02"
         "1\x03"
         "2",
         false},
        {"vmail mw status",
         false,
         "VMAIL",
         "\x02"
         "44001  0102\x03x",
         {"MESSAGE WAITING STATUS: 4001  NEW: 01 URGENT: 02", "Received--> 44001  0102x"},
         "\x02"
         "44001  0102\x03x",
         false},
    };
    for (auto& c : cases) {
        SetUp();
        link.settings().useTcp = c.tcp;
        // What the PBX said before this case, already looked at by a wait.
        link.setMode(PmsMode::Hotel, link.protocolType());
        receive(c.tcp, untouched);
        ReceivedMessages::Reader arrivals = link.received().reader();
        log = TrafficLog();
        tcp.written.clear();
        serial.written.clear();
        link.setMode(*pmsModeNamed(c.mode), link.protocolType());
        receive(c.tcp, c.in);
        EXPECT_EQ(lines(), c.logged) << c.name;
        EXPECT_EQ(arrivals.next(), QString::fromLatin1(c.lastControl)) << c.name;
        EXPECT_EQ(arrivals.next(), std::nullopt) << c.name << ": one read, one message";
        const QList<QByteArray> expectedWrites =
            c.answered ? QList<QByteArray>{ACK} : QList<QByteArray>{};
        EXPECT_EQ((c.tcp ? tcp : serial).written, expectedWrites) << c.name;
    }
}

TEST_F(Receiver, CarrierDetectOverSerial) {
    ReceivedMessages::Reader arrivals = link.received().reader();
    Q_EMIT serial.carrierDetectChanged();
    EXPECT_EQ(arrivals.next(), "Comm Event Fired ");
    EXPECT_EQ(lines(), QStringList{" Comm Event Fired 5"});
}

TEST_F(Receiver, AnswerToEnqGoesOutDuringAWait) {
    // The PBX bids while the console waits: the ACK goes out inside the wait, unguarded.
    tcpPbx.options.onEnq = sim::Answer::Silent;
    tcp.deliver(ENQ, 300);
    const AckWait wait = wait_for_ack(link, false);
    EXPECT_EQ(tcp.written, QList<QByteArray>{ACK});
    EXPECT_EQ(wait.received, "ENQ") << "an ENQ is not an ACK";
}

TEST(FindPositionOfNextMessage, Table) {
    struct Case {
        qsizetype start;
        QString text;
        qsizetype result;
    } cases[] = {
        {0, "ab\r\ncd", 4},
        {0,
         "ab\x03"
         "cd",
         2},
        {0, "a\x03\r\n", 1},
        {0, "a\r\n\x03", 3},
        {3,
         "ab\x03"
         "cd\r\nx",
         7},
        {0, "abc", 3},
        {0, "", 0},
        {0, "ab\r", 3},
        {5, "abc", 3},
    };
    for (auto& c : cases)
        EXPECT_EQ(find_position_of_next_message(c.start, c.text), c.result) << c.text.toStdString();
}

} // namespace
