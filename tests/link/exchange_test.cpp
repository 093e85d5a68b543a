#include "common/link_fixture.h"
#include "core/pause.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

class Exchange : public LinkFixture {};

// An open TCP link whose clock starts at `start` on a fixed day, with no PBX behind it.
struct LinkStartingAt {
    explicit LinkStartingAt(QTime start) : pump(QDateTime(QDate(2026, 1, 5), start)) {
        tcp.connectToHost("h", 1);
        pump.processEvents();
    }
    VirtualEventPump pump;
    TrafficLog log;
    RecordingOperator op;
    FakeTransport tcp{pump, "tcp"}, serial{pump, "serial"};
    Link link{pump, log, op, tcp, serial};
};

TEST_F(Exchange, NakToEveryEnqEndsAfterFiveQuickRoundTrips) {
    tcpPbx.options.onEnq = Answer::Nak;
    link.send_enq();
    EXPECT_TRUE(link.ackFailed());
    EXPECT_EQ(tcp.written, QList<QByteArray>(5, ENQ));
    EXPECT_LE(pump.elapsedMs(), 5 * 100) << "each answer ends its wait at the next 0.1 s step";
    EXPECT_EQ(lines().count("Sending -->    ENQ"), 5);
    EXPECT_EQ(lines().count("Received--> NAK"), 5);
    EXPECT_FALSE(lines().contains("ERROR: WAITING FOR ACK - TIMEOUT")) << "no error lines";
    EXPECT_FALSE(link.waitingForAck());
}

TEST_F(Exchange, SilentPbxCostsFiveTimesFiveSecondsPerEnqStage) {
    tcpPbx.options.onEnq = Answer::Silent;
    link.send_enq();
    EXPECT_TRUE(link.ackFailed());
    EXPECT_EQ(tcp.written.size(), 5);
    EXPECT_GE(pump.elapsedMs(), 5 * 5000);
    EXPECT_LE(pump.elapsedMs(), 5 * 5100);
}

TEST_F(Exchange, EnqAckedAtFirstAttempt) {
    link.send_enq();
    EXPECT_FALSE(link.ackFailed());
    EXPECT_EQ(tcp.written, QList<QByteArray>{ENQ});
    EXPECT_EQ(lines(), QStringList({"Sending -->    ENQ", "Received--> ACK"}));
}

TEST_F(Exchange, SendEnqDoesNothingWhileWaiting) {
    tcpPbx.options.onEnq = Answer::Silent;
    link.send_text(QString(QChar(5)));
    link.wait_for_ack(false);
    ASSERT_TRUE(link.ackFailed());
    tcp.written.clear();
    const Link::WaitGuard busy(link);
    link.send_enq();
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_TRUE(link.ackFailed()) << "left as it was";
    qint16 n = 10;
    EXPECT_FALSE(link.send_enq_counted(n));
    EXPECT_TRUE(tcp.written.isEmpty());
}

TEST_F(Exchange, WaitForAckErrorLines) {
    struct Case {
        const char* name;
        Answer answer;
        bool failed;
        QStringList shown;
    } cases[] = {
        {"ack", Answer::Ack, false, {"Received--> ACK"}},
        {"nak",
         Answer::Nak,
         true,
         {"Received--> NAK", "ERROR: DID NOT RECIEVE ACK FROM PBX",
          "       -> RECEIVED NAK INSTEAD"}},
        {"silent", Answer::Silent, true, {"ERROR: WAITING FOR ACK - TIMEOUT"}},
    };
    for (auto& c : cases) {
        LinkFixture::SetUp();
        log = TrafficLog();
        tcpPbx.options.onEnq = c.answer;
        link.send_text(QString(QChar(5)));
        link.wait_for_ack(true);
        EXPECT_EQ(link.ackFailed(), c.failed) << c.name;
        EXPECT_EQ(lines(), c.shown) << c.name;
    }
}

TEST_F(Exchange, StaleAckSatisfiesPollAtOnce) {
    tcp.deliver(ACK, 0);
    pump.processEvents();
    log = TrafficLog();
    const qint64 start = pump.elapsedMs();
    tcpPbx.options.onEnq = Answer::Silent;
    EXPECT_TRUE(link.poll_for_ack(true));
    EXPECT_EQ(pump.elapsedMs(), start);
    EXPECT_FALSE(link.waitingForAck());
}

TEST_F(Exchange, PollGivesUpAfterFiveSeconds) {
    tcp.deliver(NAK, 0);
    pump.processEvents();
    log = TrafficLog();
    const qint64 start = pump.elapsedMs();
    EXPECT_FALSE(link.poll_for_ack(true));
    EXPECT_EQ(pump.elapsedMs() - start, 5000);
    EXPECT_EQ(lines(), QStringList{"ERROR: WAITING FOR ACK - TIMEOUT"});
    EXPECT_FALSE(link.waitingForAck());
}

TEST(ExchangeAtMidnight, WaitStartingInTheLastFiveSecondsEndsOnlyOnAnAnswer) {
    LinkStartingAt rig(QTime(23, 59, 57));
    VirtualEventPump& pump = rig.pump;
    Link& link = rig.link;
    rig.tcp.deliver(ACK, 60'000);
    link.wait_for_ack(true);
    EXPECT_FALSE(link.ackFailed());
    EXPECT_GE(pump.elapsedMs(), 60'000);
}

TEST(ExchangeTimeOut, EndsAtTheFirstClockReadingPastTheDeadline) {
    // The deadline is kept in single precision, whose step grows with the time of day; the
    // time-out lands within one step of 5 s, never before.
    const struct {
        QTime start;
        qint64 latestMs;
    } cases[] = {
        {QTime(1, 0), 5001},          // steps of 0.24 ms
        {QTime(10, 0), 5004},         // 3.9 ms
        {QTime(10, 0, 0, 998), 5004}, // a deadline that rounds down
        {QTime(20, 0, 0, 3), 5008},   // 7.8 ms
    };
    for (const auto& c : cases) {
        LinkStartingAt rig(c.start);
        VirtualEventPump& pump = rig.pump;
        Link& link = rig.link;
        const qint64 start = pump.elapsedMs();
        link.wait_for_ack(false);
        EXPECT_TRUE(link.ackFailed());
        EXPECT_GE(pump.elapsedMs() - start, 5000) << c.start.toString().toStdString();
        EXPECT_LE(pump.elapsedMs() - start, c.latestMs) << c.start.toString().toStdString();
    }
}

TEST_F(Exchange, ConnectionTestAgainstARefusingPbxSendsTenEnqs) {
    tcpPbx.options.onEnq = Answer::Nak;
    EXPECT_EQ(link.cmd_connect(), Link::ConnectResult::NoResponse);
    EXPECT_EQ(tcp.written, QList<QByteArray>(10, ENQ));
    EXPECT_EQ(lines().last(), "No response from PBX");
    EXPECT_FALSE(lines().contains("Connecting...")) << "the HOTEL test over TCP writes none";
    EXPECT_TRUE(tcp.isOpen()) << "the socket stays open";
}

TEST_F(Exchange, SendTextDropsTextWhileClosed) {
    useSerial();
    serial.close();
    link.send_text("\x02"
                   "CHK1   101\x03");
    EXPECT_TRUE(serial.written.isEmpty());
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_TRUE(log.logText().isEmpty());
}

TEST_F(Exchange, TextGoesOutOneByteACharacter) {
    link.send_text(QString("A") + QChar(0xE9) + QChar(0x0141) + QChar(0));
    ASSERT_EQ(tcp.written.size(), 1);
    EXPECT_EQ(tcp.written[0], QByteArray("A\xE9?\0", 4)) << "Latin-1; others become '?'";
}

} // namespace

namespace {

TEST_F(Exchange, StopRequestUnwindsEveryWait) {
    tcpPbx.options.onEnq = Answer::Silent;
    pump.schedule(1200, [&] { pump.requestStop(); });
    link.send_enq();
    EXPECT_TRUE(link.ackFailed());
    EXPECT_LT(pump.elapsedMs(), 1500) << "the five ENQ waits end at their next look";
    EXPECT_FALSE(link.poll_for_ack(false));
    EXPECT_FALSE(link.waitingForAck());
    const qint64 before = pump.elapsedMs();
    pause_seconds(pump, 5.0f);
    EXPECT_EQ(pump.elapsedMs(), before);
}

} // namespace
