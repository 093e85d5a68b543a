#include "sim/paced_writer.h"

#include "core/event_pump.h"
#include "sim/peer.h"

#include <cmath>

namespace larkspur::sim {

namespace {
// A byte on an asynchronous line: start bit, eight data bits, stop bit.
constexpr double bitsPerByte = 10.0;
} // namespace

PacedWriter::PacedWriter(Peer& peer, EventPump& pump, const LinePacing& pacing, QObject* parent)
    : QObject(parent), m_peer(peer), m_pump(pump), m_pacing(pacing) {}

void PacedWriter::send(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return;
    if (!m_pacing.paced() && m_queue.isEmpty()) {
        if (m_peer.write(bytes))
            Q_EMIT pieceSent(bytes);
        return;
    }
    // A line that has been idle is free from now; a busy one when its last piece has crossed.
    if (m_queue.isEmpty())
        m_lineFreeAt = qMax(m_lineFreeAt, m_pump.monotonicSeconds());
    m_queue.append(bytes);
    if (!m_waiting)
        writeWhatIsDue();
}

void PacedWriter::writeWhatIsDue() {
    while (!m_queue.isEmpty()) {
        const qint64 dueMs = std::llround((m_lineFreeAt - m_pump.monotonicSeconds()) * 1000.0);
        if (dueMs > 0) {
            m_waiting = true;
            m_pump.schedule(dueMs, this, [this] {
                m_waiting = false;
                writeWhatIsDue();
            });
            return;
        }
        writeNextPiece();
    }
}

void PacedWriter::writeNextPiece() {
    const QByteArray& message = m_queue.first();
    qsizetype size = message.size() - m_sentOfFirst;
    if (m_pacing.pieceBytes > 0)
        size = qMin<qsizetype>(size, m_pacing.pieceBytes);
    else if (m_pacing.baud > 0)
        size = 1;
    const QByteArray piece = message.mid(m_sentOfFirst, size);
    m_sentOfFirst += size;
    const bool lastPiece = m_sentOfFirst == message.size();
    if (lastPiece) {
        m_queue.removeFirst();
        m_sentOfFirst = 0;
    }
    if (!m_peer.write(piece)) {
        // The console is gone: nothing more reaches it.
        m_queue.clear();
        m_sentOfFirst = 0;
        return;
    }
    Q_EMIT pieceSent(piece);

    // The next piece leaves once this one has crossed the line, and after the pause that ends a
    // piece cut from a message.
    if (m_pacing.baud > 0)
        m_lineFreeAt += bitsPerByte * double(size) / double(m_pacing.baud);
    if (m_pacing.pieceBytes > 0 && !lastPiece)
        m_lineFreeAt += m_pacing.pieceGapSeconds;
}

} // namespace larkspur::sim
