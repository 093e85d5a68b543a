#include "common/link_fixture.h"
#include "link/exchange.h"
#include "protocol/readable_notation.h"

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

// One read of each kind, over each link, in each mode: what the log shows, what a wait sees (in
// the readable notation; none: the wait still sees what came before), and whether an ACK went back.
TEST_F(Receiver, ClassifiesLogsAndAnswers) {
    const struct {
        bool tcp;
        const char* mode;
        const char* in;
        const char* logged; // lines joined by '|'
        const char* seen;
    } cases[] = {
        {true, "HOTEL", "<ACK>", "Received--> ACK", "ACK"},
        {false, "VMAIL", "<ACK>", "PBX ACKed", "ACK"},
        {true, "HOTEL", "<ENQ>", "Received--> ENQ|Sending -->    ACK", "ENQ"},
        {false, "HOTEL", "<ENQ>", "Received--> ENQ", "ENQ"},
        {false, "HOTEL", "<NAK>", "Received--> NAK", "NAK"},
        {false, "HOTEL", "<STX>RQINZ     <ETX>", "Received--> RQINZ     ", "RTI"},
        {true, "HOTEL", "<STX>RQINZ     <ETX>", "Received--> RQINZ     ", "rti"},
        {true, "HOTEL", "<STX>RQINZ    <ETX>", "Received--> RQINZ    ", "<STX>RQINZ    <ETX>"},
        {true, "HOTEL", "<STX>STS1   101<ETX>", "Received--> STS1   101|Sending -->    ACK",
         "<STX>STS1   101<ETX>"},
        {false, "HOTEL", "<STX>MW1  101<ETX>", "Received--> MW1  101|Sending -->    ACK",
         "<STX>MW1  101<ETX>"},
        {true, "VMAIL", "<STX>MR 0001 x<ETX>", "Received--> MR 0001 x|Sending -->    ACK",
         "<STX>MR 0001 x<ETX>"},
        {true, "HOTEL", "<STX>ALT1<ETX>", "Received--> ALT1|Sending -->    ACK", "<STX>ALT1<ETX>"},
        {true, "HOTEL", "<STX>MR 0002<ETX>", "Received--> MR 0002", "<STX>MR 0002<ETX>"},
        {true, "HOTEL", "<STX>XYZ<ETX>", "Received--> XYZ", "<STX>XYZ<ETX>"},
        {true, "HOTEL", "STS1", "Received--> STS1", "STS1"},
        {true, "HOTEL", "<ACK><STX>STS1   101<ETX>", "Received--> STS1   101",
         "<ACK><STX>STS1   101<ETX>"},
        {true, "HOTEL", " <ACK> ", "Received--> ACK", "ACK"},     // TCP trims blanks
        {false, "HOTEL", " <ACK> ", "Received-->   ", " <ACK> "}, // a serial line keeps them
        {true, "HOTEL", "   ", "", nullptr},                      // TCP ignores empty reads
        {false, "HOTEL", "", "Received--> ", ""},
        {true, "HOTEL", "\\xFF\\xFB\\x01", "Connecting...", nullptr}, // a telnet echo offer
        {false, "HOTEL", "\\xFF\\xFB\\x01", "Received--> ", "\\xFF\\xFB\\x01"},
        {true, "VMAIL", "<STX>1<ETX>2", "PBX REQUESTS RESYNCHRONIZE|Received--> 12",
         "<STX>1<ETX>2"},
        {true, "HOTEL", "<STX>1<ETX>2", "Received--> 12", "<STX>1<ETX>2"},
        {true, "VMAIL", "<STX>54001  <ETX>x", "BAD MAILBOX ADDRESS: 4001 |Received--> 54001  x",
         "<STX>54001  <ETX>x"},
        {true, "VMAIL", "<STX>5<ETX>", "Received--> 5", "<STX>5<ETX>"},
        {false, "VMAIL", "<STX>44001  0102<ETX>x",
         "MESSAGE WAITING STATUS: 4001  NEW: 01 URGENT: 02|Received--> 44001  0102x",
         "<STX>44001  0102<ETX>x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.tcp ? "tcp " : "serial ") + c.mode + " " + c.in);
        SetUp();
        link.settings().useTcp = c.tcp;
        // What the PBX said before this case, already looked at by a wait.
        link.setMode(PmsMode::Hotel, link.protocolType());
        receive(c.tcp, "untouched");
        ReceivedMessages::Reader arrivals = link.received().reader();
        log = TrafficLog();
        tcp.written.clear();
        serial.written.clear();
        link.setMode(*pmsModeNamed(c.mode), link.protocolType());
        receive(c.tcp, parseReadable(QString::fromLatin1(c.in), nullptr));
        const QString logged = QString::fromLatin1(c.logged);
        EXPECT_EQ(lines(), logged.isEmpty() ? QStringList() : logged.split(u'|'));
        EXPECT_EQ(arrivals.next(),
                  c.seen ? QString::fromLatin1(parseReadable(QString::fromLatin1(c.seen), nullptr))
                         : QStringLiteral("untouched"));
        EXPECT_EQ(arrivals.next(), std::nullopt) << "one read, one message";
        EXPECT_EQ((c.tcp ? tcp : serial).written,
                  logged.contains("Sending") ? QList<QByteArray>{ACK} : QList<QByteArray>{});
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
        {0, "ab\r\ncd", 4},  {0, "ab\003cd", 2},      {0, "a\x03\r\n", 1},
        {0, "a\r\n\x03", 3}, {3, "ab\003cd\r\nx", 7}, {0, "abc", 3},
        {0, "", 0},          {0, "ab\r", 3},          {5, "abc", 3},
    };
    for (auto& c : cases)
        EXPECT_EQ(find_position_of_next_message(c.start, c.text), c.result) << c.text.toStdString();
}

} // namespace
