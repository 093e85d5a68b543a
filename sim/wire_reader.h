#pragma once

#include "protocol/frame_scanner.h"

#include <QByteArray>
#include <QList>

namespace larkspur::sim {

// One thing the console said: a bare control byte or a whole frame.
struct WireUnit {
    enum class Kind { Enq, Ack, Nak, Frame };
    Kind kind;
    QByteArray text = {};   // a frame's bytes between STX and ETX
    bool checked = false;   // a check character followed the ETX
    char check = 0;         // the check character received
    char expectedCheck = 0; // the check character the text and ETX call for

    bool operator==(const WireUnit&) const = default;
};

// Cuts the byte stream from the console into units, whatever pieces it arrives in. Bytes
// outside a frame other than ENQ, ACK and NAK are skipped; an STX inside a frame starts the
// frame over, as a console that gave up on a frame sends a new one.
class WireReader {
public:
    // With `checkCharacter`, a frame ends one byte after its ETX (voice-mail frames).
    explicit WireReader(bool checkCharacter);

    // The units that `bytes` completes, in order.
    QList<WireUnit> feed(const QByteArray& bytes);

private:
    bool m_checkCharacter;
    FrameScanner m_scanner;
    QByteArray m_text;
};

} // namespace larkspur::sim
