#include "protocol/wire_reader.h"

#include "core/event_pump.h"

#include <cmath>

namespace larkspur {

WireReader::WireReader(EventPump& pump, bool checkCharacter, int frameGapMs, QObject* parent)
    : QObject(parent), m_pump(pump), m_scanner(checkCharacter), m_frameGapMs(qMax(1, frameGapMs)) {}

QList<WireUnit> WireReader::feed(QByteArrayView bytes) {
    QList<WireUnit> units = m_scanner.feed(bytes);
    if (m_scanner.holding()) {
        m_lastArrival = m_pump.monotonicSeconds();
        watchTheGap();
    }
    return units;
}

void WireReader::watchTheGap() {
    if (m_timerArmed)
        return;
    m_timerArmed = true;
    // One timer at a time: when it fires it looks at how long the line has really been silent.
    const double silentMs = (m_pump.monotonicSeconds() - m_lastArrival) * 1000.0;
    const qint64 dueMs = qMax<qint64>(1, std::llround(double(m_frameGapMs) - silentMs));
    m_pump.schedule(dueMs, this, [this] { onGapTimer(); });
}

void WireReader::onGapTimer() {
    m_timerArmed = false;
    if (!m_scanner.holding())
        return;
    const double silentMs = (m_pump.monotonicSeconds() - m_lastArrival) * 1000.0;
    if (silentMs + 0.5 < double(m_frameGapMs)) {
        watchTheGap();
        return;
    }
    // The rest of the frame is not coming.
    if (const std::optional<WireUnit> unfinished = m_scanner.flush())
        Q_EMIT gapPassed(*unfinished);
}

} // namespace larkspur
