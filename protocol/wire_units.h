#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <optional>

namespace larkspur {

// One thing on the wire, from either side: what the receiver, the simulator and the tap each take
// a byte stream apart into.
struct WireUnit {
    enum class Kind {
        Enq,             // a bare control byte outside a frame
        Ack,             //
        Nak,             //
        Frame,           // STX to ETX, and in voice-mail mode the check character after it
        UnfinishedFrame, // a frame whose end never came: the line fell silent, a new STX came,
                         // or it grew past what any frame is
        Stray,           // other bytes outside a frame, as they came
    };
    // Voice-mail frames carry a check character after their ETX.
    enum class Check { None, Right, Wrong };

    Kind kind = Kind::Stray;
    QByteArray bytes;
    Check check = Check::None;

    // A frame's text: what stands between its STX and its ETX.
    QByteArray text() const;
    bool isControl() const { return kind == Kind::Enq || kind == Kind::Ack || kind == Kind::Nak; }
    bool operator==(const WireUnit&) const = default;
};

// Cuts a byte stream into wire units, whatever pieces it arrives in. A frame that a piece leaves
// unfinished is held until the piece that ends it; an STX inside a frame starts a new one, as a
// sender that gave up on a frame sends the next. Stray bytes are cut at the end of each piece, so
// nothing but a frame is ever held.
class WireScanner {
public:
    // Past this, what is held is no frame.
    static constexpr qsizetype maxFrameBytes = 64 * 1024;

    // With `checkCharacter`, a frame ends one byte after its ETX (voice-mail frames).
    explicit WireScanner(bool checkCharacter = false) : m_checkCharacter(checkCharacter) {}
    // Applies from the next frame on.
    void setCheckCharacter(bool checkCharacter) { m_checkCharacter = checkCharacter; }

    // The units that `bytes` completes, in order.
    QList<WireUnit> feed(QByteArrayView bytes);
    // The frame held, as it stands; nothing when none is.
    std::optional<WireUnit> flush();
    bool holding() const { return !m_frame.isEmpty(); }
    qsizetype heldBytes() const { return m_frame.size(); }
    void clear() { m_frame.clear(); }

private:
    WireUnit frameUnit(WireUnit::Kind kind);

    bool m_checkCharacter;
    bool m_frameChecked = false; // the held frame ends with a check character
    bool m_awaitingCheck = false;
    QByteArray m_frame;
};

} // namespace larkspur
