// The script the tap learns from what the PMS did: the recorder's lines for every transaction
// the PBX acknowledged, and the waits with digits long enough to meet them again.
#include "common/qt_printers.h"
#include "tap_analysis.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::tap;
using namespace larkspur::tap::test;

namespace {

constexpr Side pms = Side::Pms;
constexpr Side pbx = Side::Pbx;

// A hotel session: transactions acknowledged, refused and retried, link messages, and the
// PBX's own messages at various delays after the line before them.
void hotelSession(TapAnalysis& tap) {
    tap.open(0, "PMS connected");
    tap.send(100, pms, "<ENQ>");
    tap.send(101, pbx, "<ACK>");
    tap.send(110, pms, "<STX>CHK1   101<ETX>");
    tap.send(112, pbx, "<ACK>");
    tap.send(2612, pbx, "<STX>STS2   101<ETX>"); // 2.5 s after the check-in's ACK
    tap.send(2613, pms, "<ACK>");
    tap.send(3000, pms, "<STX>AREYUTHERE<ETX>");
    tap.send(3001, pbx, "<ACK>");
    tap.send(3100, pms, "<STX>XYZ9   101<ETX>");
    tap.send(3101, pbx, "<ACK>");
    tap.send(4000, pms, "<STX>CHK0   101<ETX>");
    tap.send(4001, pbx, "<NAK>");
    tap.send(4100, pms, "<STX>CHK0   101<ETX>");
    tap.send(4101, pbx, "<ACK>");
    tap.send(4300, pbx, "<STX>MR 0001  101<ETX>"); // 0.2 s after
    tap.send(16300, pbx, "<STX>STS1   102<ETX>");  // 12 s after
    tap.send(16400, pbx, "<STX>STS1   10<ETX>");   // not a room of five: no wait meets it
    tap.send(17000, pms, "<STX>NAM1 Smith                  101<ETX>"); // never answered
}

TEST(ScriptLearner, HotelTransactionsTheRecorderWouldWriteAndTheirWaits) {
    const struct {
        bool waits;
        QStringList learned;
    } cases[] = {
        {false, {"CHK1   101", "CHK0   101"}},
        {true,
         {"CHK1   101", "WAIT STS2   101 3", "CHK0   101", "WAIT MR 0001  101 1",
          "WAIT STS1   102 9"}},
    };
    for (const auto& c : cases) {
        TapAnalysis tap({.learn = true, .waits = c.waits});
        hotelSession(tap);
        tap.run();
        EXPECT_EQ(tap.learned, c.learned) << c.waits;
        EXPECT_EQ(tap.learner->learned(), c.learned.size());
        // The are-you-there and the message this console never sends.
        EXPECT_EQ(tap.learner->passedOver(), 2);
    }
}

TEST(ScriptLearner, AWaitCountsFromTheStartOfItsSession) {
    TapAnalysis tap({.learn = true, .waits = true});
    tap.open(1000, "PMS connected");
    tap.send(1400, pbx, "<STX>MW 1   101<ETX>");
    tap.close(2000, "the PMS hung up");
    tap.open(10000, "PMS connected");
    tap.send(13500, pbx, "<STX>ALT1   101<ETX>");
    tap.run();
    EXPECT_EQ(tap.learned, QStringList({"WAIT MW 1   101 1", "WAIT ALT   101 4"}));
}

TEST(ScriptLearner, VoiceMailFramesAsTheRecorderWritesThem) {
    for (const Protocol protocol : {Protocol::Hyatt, Protocol::His}) {
        TapAnalysis tap({.mode = PmsMode::Vmail, .protocol = protocol, .learn = true});
        tap.open(0, "PMS connected");
        tap.send(10, pms, "<STX>1<ETX><BCC>"); // the console's connection test
        tap.send(11, pbx, "<ACK>");
        tap.send(100, pms, "<STX>24001  <ETX><BCC>");
        tap.send(101, pbx, "<ACK>");
        tap.send(200, pms, "<STX>84001  12<ETX>X"); // a wrong check character
        tap.send(201, pbx, "<ACK>");
        tap.send(300, pms, "<STX>34001  <ETX><BCC>"); // refused
        tap.send(301, pbx, "<NAK>");
        tap.send(400, pms, "<STX>B4001  5555  <ETX><BCC>");
        tap.send(402, pbx, "<ACK>");
        tap.send(500, pbx, "<STX>4  40010201<ETX><BCC>"); // no waits in voice-mail scripts
        tap.run();
        EXPECT_EQ(tap.learned, QStringList({"VMAIL" + protocolName(protocol), "\00224001  \0034~",
                                            "\002B4001  5555  \003D~"}));
        EXPECT_EQ(tap.learner->learned(), 2);
        EXPECT_EQ(tap.learner->passedOver(), 2);
    }
}

} // namespace
