#include "core/virtual_event_pump.h"

#include <QPointer>

namespace larkspur {

VirtualEventPump::VirtualEventPump(const QDateTime& start) : m_start(start) {}

double VirtualEventPump::monotonicSeconds() const {
    return double(m_nowMs) / 1000.0;
}

QDateTime VirtualEventPump::currentDateTime() const {
    return m_start.addMSecs(m_nowMs);
}

void VirtualEventPump::processEvents() {
    // A delivery may schedule another for now; it runs in this same pass, as a posted event does.
    while (!m_agenda.empty() && m_agenda.begin()->first <= m_nowMs) {
        auto node = m_agenda.extract(m_agenda.begin());
        node.mapped()();
    }
}

bool VirtualEventPump::waitForEvent(int milliseconds) {
    const qint64 deadline = m_nowMs + qMax(0, milliseconds);
    if (!m_agenda.empty() && m_agenda.begin()->first <= deadline) {
        m_nowMs = qMax(m_nowMs, m_agenda.begin()->first);
        return true;
    }
    m_nowMs = deadline;
    return false;
}

void VirtualEventPump::schedule(qint64 delayMs, Delivery delivery) {
    m_agenda.emplace(m_nowMs + qMax<qint64>(0, delayMs), std::move(delivery));
}

void VirtualEventPump::schedule(qint64 delayMs, QObject* context, std::function<void()> task) {
    schedule(delayMs, [guard = QPointer<QObject>(context), run = std::move(task)] {
        if (guard)
            run();
    });
}

} // namespace larkspur
