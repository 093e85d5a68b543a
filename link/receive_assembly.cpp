#include "link/receive_assembly.h"

#include "core/event_pump.h"

#include <cmath>

namespace larkspur {

ReceiveAssembly::ReceiveAssembly(EventPump& pump, QObject* parent)
    : QObject(parent), m_pump(pump) {}

void ReceiveAssembly::take(const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        // A read that came to nothing (all of it NULs the line discards) is still a read.
        if (!holding())
            Q_EMIT message(bytes);
        return;
    }
    const qsizetype scanFrom = m_held.size();
    m_held += bytes;
    for (qsizetype i = scanFrom; i < m_held.size(); ++i) {
        const bool wasInside = m_scanner.insideFrame();
        if (m_scanner.feed(m_held.at(i)) == FrameScanner::Role::Start && !wasInside)
            m_frameStart = i;
    }
    if (!m_scanner.insideFrame()) {
        handOver(m_held.size());
        return;
    }
    // What came before the unfinished frame is finished; a complete frame there is answered now.
    handOver(m_frameStart);
    if (m_held.size() > maxHeldBytes) {
        flush();
        return;
    }
    m_lastArrival = m_pump.monotonicSeconds();
    watchTheGap();
}

void ReceiveAssembly::handOver(qsizetype length) {
    if (length <= 0)
        return;
    const QByteArray finished = m_held.left(length);
    m_held.remove(0, length);
    m_frameStart -= length;
    Q_EMIT message(finished);
}

void ReceiveAssembly::watchTheGap() {
    if (m_timerArmed)
        return;
    m_timerArmed = true;
    // One timer at a time: when it fires it looks at how long the line has really been silent.
    const double silentMs = (m_pump.monotonicSeconds() - m_lastArrival) * 1000.0;
    const qint64 dueMs = qMax<qint64>(1, std::llround(double(m_frameGapMs) - silentMs));
    m_pump.schedule(dueMs, this, [this] { onGapTimer(); });
}

void ReceiveAssembly::onGapTimer() {
    m_timerArmed = false;
    if (m_held.isEmpty())
        return;
    const double silentMs = (m_pump.monotonicSeconds() - m_lastArrival) * 1000.0;
    if (silentMs + 0.5 < double(m_frameGapMs)) {
        watchTheGap();
        return;
    }
    // The rest of the frame is not coming: what arrived is the message.
    flush();
}

void ReceiveAssembly::flush() {
    m_scanner.reset();
    handOver(m_held.size());
}

void ReceiveAssembly::clear() {
    m_held.clear();
    m_frameStart = 0;
    m_scanner.reset();
}

int defaultFrameGapMs(int baud, double bitsPerCharacter) {
    constexpr int floorMs = 100;
    constexpr int characters = 20;
    if (baud <= 0)
        return floorMs;
    const double ms = characters * bitsPerCharacter * 1000.0 / double(baud);
    return qMax(floorMs, int(std::ceil(ms)));
}

} // namespace larkspur
