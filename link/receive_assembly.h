#pragma once

#include "protocol/wire_reader.h"

#include <QByteArray>
#include <QObject>

namespace larkspur {

class EventPump;

// Turns the reads of one transport into the reads the receiver takes as messages. A read that
// ends inside a frame (its STX came, its end has not) is not finished: the unfinished frame is
// held and joined with what follows until it is complete, and then handed over in that same
// wake-up, so its answer is never late. Whatever comes before the unfinished frame is handed over
// at once, as is every read that ends outside a frame: a lone ACK, an ACK and a frame that came
// together, unframed text. A frame whose end never comes is handed over as it stands once the
// line has been silent for the frame gap.
//
// A read that holds several whole messages stays one, unless the link is told that a converter
// joins them: then each ENQ, ACK, NAK, frame and run of other bytes is handed over on its own.
class ReceiveAssembly : public QObject {
    Q_OBJECT
public:
    explicit ReceiveAssembly(EventPump& pump, QObject* parent = nullptr);

    // Voice-mail frames end one byte after their ETX.
    void setCheckCharacter(bool checkCharacter) { m_reader.setCheckCharacter(checkCharacter); }
    void setFrameGapMs(int milliseconds) { m_reader.setFrameGapMs(milliseconds); }
    int frameGapMs() const { return m_reader.frameGapMs(); }
    void setSplitJoined(bool split) { m_splitJoined = split; }

    // Takes one read of the transport; emits `message` for each read that is finished.
    void take(const QByteArray& bytes);
    // Hands over what is held as it stands: the link went away and no more is coming.
    void flush();
    // Forgets what is held: the link was closed.
    void clear();
    bool holding() const { return m_reader.holding(); }

Q_SIGNALS:
    // One read for the receiver.
    void message(const QByteArray& bytes);

private:
    WireReader m_reader;
    bool m_splitJoined = false;
    // Frames that a new STX started over, held with the frame that follows them.
    QByteArray m_restarted;
};

} // namespace larkspur
