#include "common/link_fixture.h"
#include "core/pause.h"
#include "link/exchange.h"

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
    EXPECT_TRUE(send_enq(link).ackFailed());
    EXPECT_EQ(tcp.written, QList<QByteArray>(5, ENQ));
    EXPECT_LE(pump.elapsedMs(), 5 * 100) << "each answer ends its wait at the next 0.1 s step";
    EXPECT_EQ(lines().count("Sending -->    ENQ"), 5);
    EXPECT_EQ(lines().count("Received--> NAK"), 5);
    EXPECT_FALSE(lines().contains("ERROR: WAITING FOR ACK - TIMEOUT")) << "no error lines";
    EXPECT_FALSE(link.waitingForAck());
}

TEST_F(Exchange, SilentPbxCostsFiveTimesFiveSecondsPerEnqStage) {
    tcpPbx.options.onEnq = Answer::Silent;
    EXPECT_TRUE(send_enq(link).ackFailed());
    EXPECT_EQ(tcp.written.size(), 5);
    EXPECT_GE(pump.elapsedMs(), 5 * 5000);
    EXPECT_LE(pump.elapsedMs(), 5 * 5100);
}

TEST_F(Exchange, SendEnqDoesNothingWhileWaiting) {
    tcpPbx.options.onEnq = Answer::Silent;
    const Link::WaitGuard busy(link);
    EXPECT_EQ(send_enq(link).outcome, AckWait::Outcome::Busy);
    EXPECT_TRUE(tcp.written.isEmpty());
    qint16 n = 10;
    EXPECT_FALSE(send_enq_counted(link, n));
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
        EXPECT_EQ(wait_for_ack(link, true).ackFailed(), c.failed) << c.name;
        EXPECT_EQ(lines(), c.shown) << c.name;
    }
}

TEST_F(Exchange, AWaitJudgesTheFirstOfTwoMessagesHandledInOneTurn) {
    // The ACK and the PBX's own NAK reach the console together: the ACK answers.
    tcp.deliver(ACK, 10);
    tcp.deliver(NAK, 10);
    const AckWait wait = wait_for_ack(link, true);
    EXPECT_EQ(wait.outcome, AckWait::Outcome::Acknowledged);
    EXPECT_EQ(wait.received, "ACK");
    EXPECT_EQ(lines(), QStringList({"Received--> ACK", "Received--> NAK"}));
}

TEST_F(Exchange, StaleAckSatisfiesPollAtOnce) {
    tcp.deliver(ACK, 0);
    pump.processEvents();
    log = TrafficLog();
    const qint64 start = pump.elapsedMs();
    tcpPbx.options.onEnq = Answer::Silent;
    EXPECT_TRUE(poll_for_ack(link, true));
    EXPECT_EQ(pump.elapsedMs(), start);
    EXPECT_FALSE(link.waitingForAck());
}

TEST_F(Exchange, PollGivesUpAfterFiveSeconds) {
    tcp.deliver(NAK, 0);
    pump.processEvents();
    log = TrafficLog();
    const qint64 start = pump.elapsedMs();
    EXPECT_FALSE(poll_for_ack(link, true));
    EXPECT_EQ(pump.elapsedMs() - start, 5000);
    EXPECT_EQ(lines(), QStringList{"ERROR: WAITING FOR ACK - TIMEOUT"});
    EXPECT_FALSE(link.waitingForAck());
}

TEST(ExchangeTimeOut, FiveSecondsAtAnyHourAcrossMidnightAndOnTheEighthDay) {
    // The time-out lands within a millisecond of 5 s, never before, whatever the time of day and
    // however long the program has run.
    const struct {
        QTime start;
        int daysRunning;
    } cases[] = {
        {QTime(1, 0), 0},       {QTime(10, 0, 0, 998), 0},   {QTime(20, 0, 0, 3), 0},
        {QTime(23, 59, 57), 0}, {QTime(23, 59, 59, 999), 0}, {QTime(10, 0), 7},
        {QTime(23, 59, 58), 7},
    };
    for (const auto& c : cases) {
        LinkStartingAt rig(c.start);
        VirtualEventPump& pump = rig.pump;
        pump.advance(qint64(c.daysRunning) * 24 * 3600 * 1000);
        const qint64 start = pump.elapsedMs();
        const AckWait wait = wait_for_ack(rig.link, false);
        const QString at = c.start.toString() + QStringLiteral(" day %1").arg(c.daysRunning + 1);
        EXPECT_EQ(wait.outcome, AckWait::Outcome::TimedOut) << at.toStdString();
        EXPECT_GE(pump.elapsedMs() - start, 5000) << at.toStdString();
        EXPECT_LE(pump.elapsedMs() - start, 5001) << at.toStdString();
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
    link.send_text("\002CHK1   101\x03");
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
    EXPECT_EQ(send_enq(link).outcome, AckWait::Outcome::Interrupted);
    EXPECT_LT(pump.elapsedMs(), 1500) << "the five ENQ waits end at their next look";
    EXPECT_FALSE(poll_for_ack(link, false));
    EXPECT_FALSE(link.waitingForAck());
    const qint64 before = pump.elapsedMs();
    pause_seconds(pump, 5.0f);
    EXPECT_EQ(pump.elapsedMs(), before);
}

} // namespace
