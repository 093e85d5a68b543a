#include "protocol/readable_notation.h"
#include "sim/wire_reader.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::sim;

namespace {

// Units as short texts: "ENQ", "ACK", "NAK", "frame <text>", "frame <text> check ok|bad".
QStringList describe(const QList<WireUnit>& units) {
    QStringList out;
    for (const WireUnit& u : units) {
        switch (u.kind) {
        case WireUnit::Kind::Enq:
            out << "ENQ";
            break;
        case WireUnit::Kind::Ack:
            out << "ACK";
            break;
        case WireUnit::Kind::Nak:
            out << "NAK";
            break;
        case WireUnit::Kind::Frame:
            out << "frame " + toReadable(u.text) +
                       (u.checked ? (u.check == u.expectedCheck ? " check ok" : " check bad") : "");
            break;
        }
    }
    return out;
}

// Feeds the pieces in turn and lists what each one completed, separated by "|".
QStringList read(bool checkCharacter, const QStringList& pieces) {
    WireReader reader(checkCharacter);
    QStringList out;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            out << "|";
        out << describe(reader.feed(parseReadable(pieces[i], nullptr)));
    }
    return out;
}

// Splitting across reads and the answers are tested on the simulator; these are the odd streams.
TEST(WireReader, CutsOddStreamsIntoUnits) {
    struct Case {
        bool vmail;
        QStringList pieces;
        QStringList units;
    } cases[] = {
        {false, {"<ENQ><STX>A<ETX><ACK><NAK>"}, {"ENQ", "frame A", "ACK", "NAK"}},
        {false, {"<STX>", "<ETX>"}, {"|", "frame "}},
        // Bytes outside a frame are not the console's business with us.
        {false, {"xy\\xFF<ENQ>z<ETX>"}, {"ENQ"}},
        // Control bytes inside a frame are text; an STX starts the frame over.
        {false, {"<STX>A<ENQ>B<ETX>"}, {"frame A<ENQ>B"}},
        {false, {"<STX>lost<STX>kept<ETX>"}, {"frame kept"}},
        {true, {"<STX>1<ETX>", "2<ENQ>"}, {"|", "frame 1 check ok", "ENQ"}},
        // A check character may be any byte, even one that would start a frame.
        {true, {"<STX>\\x01<ETX><BCC>"}, {"frame \\x01 check ok"}},
        {true, {"<STX>\\x06<ETX><STX>A<ETX>"}, {"frame <ACK> check bad"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(read(c.vmail, c.pieces), c.units) << c.pieces.join("|").toStdString();
}

} // namespace
