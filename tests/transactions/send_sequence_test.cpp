#include "common/link_fixture.h"

#include "protocol/frame.h"
#include "records/error_records.h"
#include "transactions/hotel_pattern.h"
#include "transactions/send_sequences.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

const HotelMessageRule checkIn = sendRule("CHK1");
const HotelMessageRule checkOut = sendRule("CHK0");

class SendSequence : public LinkFixture {
protected:
    ErrorRecords errors;
    SendResult send(const HotelMessageRule& rule, const QString& body, int& attempt) {
        return sendHotelMessage(link, errors, rule, body, attempt, body);
    }
};

// Check-in polls a second at a time for a late ACK after each NAK; the others try again at once.
TEST_F(SendSequence, AFrameNakedFiveTimesFailsAfterAPollOnlyForCheckIn) {
    const struct {
        HotelMessageRule rule;
        QString body;
        qint64 ms; // one ENQ round trip, then 5 x (0.1 s answer [+ 5 x 1 s polls])
    } cases[] = {{checkIn, "CHK1   101", 100 + 5 * 5100}, {checkOut, "CHK0   101", 100 + 5 * 100}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body.toStdString());
        SetUp();
        tcpPbx.options.onFrame = Answer::Nak;
        const qint64 start = pump.elapsedMs();
        int attempt = 1;
        EXPECT_EQ(send(c.rule, c.body, attempt), SendResult::Failed);
        EXPECT_EQ(tcp.written,
                  QList<QByteArray>({ENQ}) + QList<QByteArray>(5, frame(c.body.toLatin1())));
        EXPECT_NEAR(pump.elapsedMs() - start, c.ms, 200);
    }
}

TEST_F(SendSequence, AVoiceMailFrameNakedIsNotRetried) {
    link.setMode(PmsMode::Vmail, link.protocolType());
    tcpPbx.setMode(sim::Mode::Vmail);
    tcpPbx.options.onFrame = Answer::Nak;
    const QString f = "\00234001  \0035"; // <STX>34001  <ETX>5
    EXPECT_NE(sendVmailFrame(link, f, "CHECK IN: 4001", false), SendResult::Acknowledged);
    EXPECT_EQ(lines(),
              QStringList({"CHECK IN: 4001", "Received--> NAK", "DID NOT RECEIVE ACK FROM PBX!"}));
    EXPECT_EQ(pump.elapsedMs(), 2000);
    EXPECT_EQ(tcp.written, QList<QByteArray>{f.toLatin1()});
}

} // namespace
