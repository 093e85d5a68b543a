#include "common/link_fixture.h"
#include "link/exchange.h"
#include "link/link_trace.h"
#include "records/error_records.h"
#include "records/message_names.h"
#include "records/run_statistics.h"
#include "records/wire_trace.h"
#include "transactions/send_sequences.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

class WireTraceTest : public LinkFixture {
protected:
    WireTrace trace{pump};
    RunStatistics stats;
    QList<int> frameAttempts; // of each frame exchange, as it ended
    void SetUp() override {
        LinkFixture::SetUp();
        traceLink(link, trace);
        QObject::connect(&trace, &WireTrace::exchangeEnded, [this](const Exchange& e) {
            stats.add(e);
            if (!e.enq)
                frameAttempts << e.attempt;
        });
    }
    QStringList rows() const {
        QStringList out;
        for (qsizetype i = 0; i < trace.size(); ++i)
            out << WireTrace::format(trace.row(i)).mid(13); // without the time stamp
        return out;
    }
};

TEST_F(WireTraceTest, AnnotatesTheHandshakeAndCountsPerType) {
    const HotelMessageRule rule{"Sending   -->", "-> failed:"};
    tcpPbx.options.firstFrameAnswers = {Answer::Nak, Answer::Ack};
    int attempt = 1;
    ErrorRecords errors;
    sendHotelMessage(link, errors, rule, "CHK0   101", attempt, "CHK0   101");
    EXPECT_EQ(rows(), QStringList({
                          "TX <ENQ>   | 05",
                          "RX <ACK>   | 06   ; ENQ answered in 21 ms (ACKed)",
                          "TX <STX>CHK0   101<ETX>   | 02 43 48 4B 30 20 20 20 31 30 31 03",
                          "RX <NAK>   | 15   ; frame NAKed in 21 ms",
                          "TX <STX>CHK0   101<ETX>   | 02 43 48 4B 30 20 20 20 31 30 31 03",
                          "RX <ACK>   | 06   ; frame ACKed in 21 ms",
                      }));
    const RunStatistics::Row& checkOut = stats.rows().value("check-out");
    EXPECT_EQ(checkOut.sent, 2);
    EXPECT_EQ(checkOut.acknowledged, 1);
    EXPECT_EQ(checkOut.refused, 1);
    EXPECT_EQ(stats.rows().value("ENQ").medianMs(), 21);
    // The same frame again after its ACK is a new first attempt, not a retry.
    int again = 1;
    sendHotelMessage(link, errors, rule, "CHK0   101", again, "CHK0   101");
    EXPECT_EQ(frameAttempts, QList<int>({1, 2, 1}));
}

TEST_F(WireTraceTest, UnansweredBidsTimeOut) {
    tcpPbx.options.onEnq = Answer::Silent;
    send_enq(link);
    trace.finish("the link was closed");
    EXPECT_EQ(rows().count("TX <ENQ>   | 05"), 5);
    EXPECT_EQ(rows().count("-- no answer within 5 s to the ENQ bid"), 5);
    EXPECT_EQ(stats.rows().value("ENQ").timedOut, 5);
    EXPECT_EQ(stats.rows().value("ENQ").minMs(), -1);
}

TEST(WireTraceRing, KeepsTheNewestRows) {
    VirtualEventPump pump(QDateTime(QDate(2026, 1, 1), QTime(1, 2, 3, 4)));
    WireTrace trace(pump, 3);
    for (char c = 'a'; c <= 'e'; ++c)
        trace.received(QByteArray(1, c), PmsMode::Hotel);
    EXPECT_EQ(trace.size(), 3);
    EXPECT_EQ(trace.dropped(), 2);
    EXPECT_EQ(trace.row(0).bytes, "c");
    EXPECT_EQ(trace.row(2).bytes, "e");
    EXPECT_EQ(WireTrace::format(trace.row(2)), "01:02:03.004 RX e   | 65");
}

TEST(WireTraceRing, WithoutCapacityKeepsNoRowButAnnouncesEveryOneAndEndsExchanges) {
    VirtualEventPump pump;
    WireTrace trace(pump, 0);
    int announced = 0;
    QList<Exchange::Outcome> ended;
    QObject::connect(&trace, &WireTrace::rowAdded, [&] { ++announced; });
    QObject::connect(&trace, &WireTrace::exchangeEnded,
                     [&](const Exchange& exchange) { ended << exchange.outcome; });
    trace.sent("\x05", PmsMode::Hotel);
    trace.received("\x06", PmsMode::Hotel);
    trace.received("e", PmsMode::Hotel);
    EXPECT_EQ(announced, 3);
    EXPECT_EQ(trace.size(), 0);
    EXPECT_EQ(ended, QList{Exchange::Outcome::Acknowledged});
}

TEST(WireTraceTypes, NamesMessages) {
    struct Case {
        QByteArray frame;
        bool vmail;
        const char* type;
    } cases[] = {
        {"\002CHK1   101\x03", false, "check-in"},
        {"\x02WKP0730  101\x03", false, "wake-up"},
        {"\x02RST2    12\x03", false, "restriction"},
        {"\x02MW 0   101\x03", false, "message waiting off"},
        {"\x02XYZW\x03", false, "unknown message"},
        {"\002A4001  1234  \x03x", true, "voice mail A check-in with passcode"},
        {"\0024  40010201\x031", true, "voice mail 4"},
    };
    for (auto& c : cases)
        EXPECT_EQ(frameName(c.frame, Side::Pms, c.vmail ? PmsMode::Vmail : PmsMode::Hotel).type,
                  c.type)
            << c.frame.toStdString();
}

} // namespace
