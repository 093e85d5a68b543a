#pragma once

#include "link/receive_assembly.h"

#include <QByteArray>
#include <QObject>

#include <functional>

namespace larkspur {
class EventPump;
}

namespace larkspur::tap {

// Cuts what one side sends into the messages the trace shows, whatever pieces it arrives in.
// The receive assembly joins the pieces of a frame as the console's receiver does; what it hands
// over is then cut at the frames' bounds: a bare ENQ, ACK or NAK is a message of its own, so is
// each whole frame, and whatever lies outside frames is shown as it came, in pieces of at most
// pieceBytes. A frame that never ends (the line fell silent, a new STX came, or it grew past the
// assembly's limit) is shown as it stands. Nothing is held beyond the assembly's limit.
class MessageCutter : public QObject {
    Q_OBJECT
public:
    enum class Kind { Control, Frame, UnfinishedFrame, Stray };
    struct Message {
        Kind kind;
        QByteArray bytes;
    };
    static constexpr qsizetype pieceBytes = 64;

    MessageCutter(EventPump& pump, bool checkCharacter, int frameGapMs,
                  std::function<void(const Message&)> out, QObject* parent = nullptr);

    void take(const QByteArray& bytes);
    // The line ended or some of it was not traced: what is held is shown as it stands.
    void flush();

private:
    void cut(const QByteArray& read);
    void emitPieces(Kind kind, QByteArray& bytes);

    ReceiveAssembly m_assembly;
    bool m_checkCharacter;
    std::function<void(const Message&)> m_out;
};

} // namespace larkspur::tap
