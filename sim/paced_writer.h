#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>

namespace larkspur {
class EventPump;
}

namespace larkspur::sim {

class Peer;

// How the PBX's line delivers what it sends, to rehearse a real link: at a line speed, each
// byte taking ten bits' time, and/or cut into pieces with a pause after each.
struct LinePacing {
    int baud = 0;                   // 0: as fast as the link takes it
    int pieceBytes = 0;             // 0: each message in one piece
    double pieceGapSeconds = 0.020; // after each piece, when messages are cut
    bool paced() const { return baud > 0 || pieceBytes > 0; }
};

// Writes the PBX's messages to the console the way `pacing` says. Messages leave in the order
// they were sent, each once the one before it has crossed the line; all delays run on the pump.
class PacedWriter : public QObject {
    Q_OBJECT
public:
    // `peer`, `pump` and `pacing` must outlive the writer; a change of `pacing` applies to the
    // next message.
    PacedWriter(Peer& peer, EventPump& pump, const LinePacing& pacing, QObject* parent = nullptr);

    void send(const QByteArray& bytes);

Q_SIGNALS:
    // A piece left for the console.
    void pieceSent(const QByteArray& piece);

private:
    // Writes every piece whose time has come and waits on the pump for the next one.
    void writeWhatIsDue();
    void writeNextPiece();

    Peer& m_peer;
    EventPump& m_pump;
    const LinePacing& m_pacing;
    // Messages still to go; the first may be partly sent already.
    QList<QByteArray> m_queue;
    qsizetype m_sentOfFirst = 0;
    bool m_waiting = false;
    // When the line is free for the next piece, on the pump's clock.
    double m_lineFreeAt = 0;
};

} // namespace larkspur::sim
