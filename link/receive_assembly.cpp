#include "link/receive_assembly.h"

namespace larkspur {

ReceiveAssembly::ReceiveAssembly(EventPump& pump, QObject* parent)
    : QObject(parent), m_reader(pump, false, 100, this) {
    connect(&m_reader, &WireReader::gapPassed, this, [this](const WireUnit& unfinished) {
        Q_EMIT message(std::exchange(m_restarted, QByteArray()) + unfinished.bytes);
    });
}

void ReceiveAssembly::take(const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        // A read that came to nothing (all of it NULs the line discards) is still a read.
        if (!holding())
            Q_EMIT message(bytes);
        return;
    }
    const bool heldBefore = holding();
    const QList<WireUnit> units = m_reader.feed(bytes);
    if (!m_splitJoined && !heldBefore && !holding()) {
        // The read ends outside a frame and nothing was held: it is the message as it came.
        Q_EMIT message(bytes);
        return;
    }
    if (m_splitJoined) {
        for (const WireUnit& unit : units)
            Q_EMIT message(unit.bytes);
        return;
    }
    // A frame that a new STX started over stays with the frame held after it: one read.
    qsizetype held = units.size();
    while (m_reader.holding() && held > 0 &&
           units[held - 1].kind == WireUnit::Kind::UnfinishedFrame)
        --held;
    // Everything before the unfinished frame is finished; a complete frame there is answered now.
    QByteArray finished;
    for (qsizetype i = 0; i < held; ++i)
        finished += units[i].bytes;
    if (held > 0)
        finished.prepend(std::exchange(m_restarted, QByteArray()));
    for (qsizetype i = held; i < units.size(); ++i)
        m_restarted += units[i].bytes;
    if (!finished.isEmpty())
        Q_EMIT message(finished);
}

void ReceiveAssembly::flush() {
    if (const std::optional<WireUnit> unfinished = m_reader.flush())
        Q_EMIT message(std::exchange(m_restarted, QByteArray()) + unfinished->bytes);
}

void ReceiveAssembly::clear() {
    m_reader.clear();
    m_restarted.clear();
}

} // namespace larkspur
