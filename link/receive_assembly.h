#pragma once

#include "protocol/frame_scanner.h"

#include <QByteArray>
#include <QObject>

namespace larkspur {

class EventPump;

// Turns the reads of one transport into the reads the receiver takes as messages. A read that
// ends inside a frame (its STX came, its ETX has not; in voice-mail mode, the check character
// after the ETX has not) is not finished: the unfinished frame is held and joined with what
// follows until it is complete, and then handed over as one read in that same wake-up, so its
// answer is never late. Whatever comes before the unfinished frame is handed over at once, as
// is every read that ends outside a frame: a lone ACK, an ACK and a frame that came together,
// unframed text. A frame whose end never comes is handed over as it stands once the line has
// been silent for the frame gap.
class ReceiveAssembly : public QObject {
    Q_OBJECT
public:
    // A frame is a few dozen bytes; past this, what is held is no frame and is handed over.
    static constexpr qsizetype maxHeldBytes = 64 * 1024;

    explicit ReceiveAssembly(EventPump& pump, QObject* parent = nullptr);

    // Voice-mail frames end one byte after their ETX.
    void setCheckCharacter(bool checkCharacter) { m_scanner.setCheckCharacter(checkCharacter); }
    // How long the line must be silent before an unfinished frame is handed over as it stands.
    void setFrameGapMs(int milliseconds) { m_frameGapMs = qMax(1, milliseconds); }
    int frameGapMs() const { return m_frameGapMs; }

    // Takes one read of the transport; emits `message` for each read that is finished.
    void take(const QByteArray& bytes);
    // Hands over what is held as it stands: the link went away and no more is coming.
    void flush();
    // Forgets what is held: the link was closed.
    void clear();
    bool holding() const { return !m_held.isEmpty(); }

Q_SIGNALS:
    // One read for the receiver.
    void message(const QByteArray& bytes);

private:
    void handOver(qsizetype length);
    void watchTheGap();
    void onGapTimer();

    EventPump& m_pump;
    FrameScanner m_scanner;
    int m_frameGapMs = 100;
    QByteArray m_held;
    // Where the unfinished frame begins in m_held.
    qsizetype m_frameStart = 0;
    double m_lastArrival = 0;
    bool m_timerArmed = false;
};

// The frame gap that suits a line: the longer of 100 ms and 20 character times. A character
// takes `bitsPerCharacter` (start, data, parity and stop bits) at `baud`; 0 baud is a link
// without a line speed (TCP).
int defaultFrameGapMs(int baud, double bitsPerCharacter);

} // namespace larkspur
