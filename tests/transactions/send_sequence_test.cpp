#include "common/link_fixture.h"

#include "protocol/frame.h"
#include "records/error_records.h"
#include "transactions/hotel_pattern.h"
#include "transactions/send_sequences.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

// The rules of three messages, from the catalogue.
const HotelMessageRule checkIn = sendRule("CHK1");
const HotelMessageRule checkOut = sendRule("CHK0");
const HotelMessageRule restriction = sendRule("RST");

class SendSequence : public LinkFixture {
protected:
    ErrorRecords errors;
    QString stamp() const { return Time_of_error(pump.currentDateTime()); }
    SendResult send(const HotelMessageRule& rule, const QString& body, int& attempt) {
        return sendHotelMessage(link, errors, rule, body, attempt, body);
    }
};

TEST_F(SendSequence, AcknowledgedAtOnce) {
    int attempt = 1;
    EXPECT_EQ(send(checkOut, "CHK0   101", attempt), SendResult::Acknowledged);
    EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ, frame("CHK0   101")}));
    EXPECT_EQ(lines(), QStringList({"Sending -->    ENQ", "Received--> ACK",
                                    "Sending   -->CHK0   101", "Received--> ACK"}));
    EXPECT_EQ(errors.errorCount(), 0);
    EXPECT_EQ(attempt, 1);
}

TEST_F(SendSequence, FrameNakedWithPollTakesAboutFiveSecondsAnAttempt) {
    tcpPbx.options.onFrame = Answer::Nak;
    int attempt = 1;
    EXPECT_EQ(send(checkIn, "CHK1   101", attempt), SendResult::Failed);
    EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ}) + QList<QByteArray>(5, frame("CHK1   101")));
    // one ENQ round trip, then 5 x (0.1 s answer + 5 x 1 s polls)
    EXPECT_NEAR(pump.elapsedMs(), 100 + 5 * 5100, 200);
    const QString s = stamp();
    EXPECT_EQ(lines().mid(lines().size() - 2),
              QStringList({s + "-> PBX DID NOT ACKnowkledge the Check in message:", "CHK1   101"}));
    EXPECT_EQ(errors.errorReport(),
              s + "-> PBX DID NOT ACKnowkledge the Check in message:" + "\nCHK1   101\n\n");
    EXPECT_EQ(errors.errorCount(), 1);
}

TEST_F(SendSequence, FrameNakedWithoutPollFailsQuickly) {
    tcpPbx.options.onFrame = Answer::Nak;
    int attempt = 1;
    EXPECT_EQ(send(checkOut, "CHK0   101", attempt), SendResult::Failed);
    EXPECT_EQ(tcp.written.count(frame("CHK0   101")), 5);
    EXPECT_LE(pump.elapsedMs(), 6 * 100);
}

TEST_F(SendSequence, RetryCounterIsSharedAcrossOneClick) {
    tcpPbx.options.firstFrameAnswers = {Answer::Nak, Answer::Ack, Answer::Nak,
                                        Answer::Nak, Answer::Nak, Answer::Nak};
    int attempt = 1;
    EXPECT_EQ(send(checkOut, "CHK0   101", attempt), SendResult::Acknowledged);
    EXPECT_EQ(attempt, 2);
    EXPECT_EQ(send(checkOut, "CHK0   102", attempt), SendResult::Failed);
    EXPECT_EQ(tcp.written.count(frame("CHK0   102")), 4) << "the first room left four attempts";
    EXPECT_EQ(errors.errorCount(), 1);
}

TEST_F(SendSequence, EnqFailureRecordsByRule) {
    struct Case {
        HotelMessageRule rule;
        bool timedLog;
        qint16 count;
    } cases[] = {{checkIn, true, 1}, {restriction, false, 0}};
    for (auto& c : cases) {
        SetUp();
        log = TrafficLog();
        errors.clearReport();
        errors.resetErrors();
        tcpPbx.options.onEnq = Answer::Silent;
        int attempt = 1;
        EXPECT_EQ(send(c.rule, "X", attempt), SendResult::Failed);
        const QString s = stamp();
        EXPECT_EQ(lines().last(),
                  (c.timedLog ? s : QString()) + " PBX DID NOT ACKnowkledge ENQ message");
        EXPECT_EQ(errors.errorReport(), s + " PBX DID NOT ACKnowkledge ENQ message\n");
        EXPECT_EQ(errors.errorCount(), c.count);
        EXPECT_EQ(tcp.written, QList<QByteArray>(5, ENQ)) << "no frame after a refused bid";
    }
}

TEST_F(SendSequence, VmailFrameJudgedAfterTwoSeconds) {
    struct Case {
        Answer answer;
        bool logSuccess;
        QStringList after;
    } cases[] = {
        {Answer::Ack, true, {"CHECK OUT: 4001", "PBX ACKed", "PBX ACKed"}},
        {Answer::Ack, false, {"CHECK IN: 4001", "PBX ACKed"}},
        {Answer::Silent, true, {"CHECK OUT: 4001", "DID NOT RECEIVE ACK FROM PBX!"}},
        {Answer::Nak,
         false,
         {"CHECK IN: 4001", "Received--> NAK", "DID NOT RECEIVE ACK FROM PBX!"}},
    };
    for (auto& c : cases) {
        SetUp();
        log = TrafficLog();
        link.setMode(PmsMode::Vmail, link.protocolType());
        tcpPbx.setMode(sim::Mode::Vmail);
        tcpPbx.options.onFrame = c.answer;
        const qint64 start = pump.elapsedMs();
        const QString f = "\x02"
                          "34001  \x03"
                          "5";
        const bool acked =
            sendVmailFrame(link, f, c.after.first(), c.logSuccess) == SendResult::Acknowledged;
        EXPECT_EQ(acked, c.answer == Answer::Ack);
        EXPECT_EQ(lines(), c.after);
        EXPECT_EQ(pump.elapsedMs() - start, 2000);
        EXPECT_EQ(tcp.written.last(), f.toLatin1());
        EXPECT_EQ(errors.errorCount(), 0);
    }
}

} // namespace
