#pragma once

#include "core/event_pump.h"

#include <functional>
#include <map>

namespace larkspur {

// The pump of the tests: a virtual clock and an agenda of deliveries. Waiting advances the
// clock to the next delivery (or by the whole wait), so a 50-second time-out costs microseconds.
class VirtualEventPump : public EventPump {
public:
    using Delivery = std::function<void()>;

    // The clock starts at `start` (virtual time never touches the real clock).
    explicit VirtualEventPump(const QDateTime& start = QDateTime(QDate(2026, 1, 5), QTime(10, 0)));

    double monotonicSeconds() const override;
    QDateTime currentDateTime() const override;
    void processEvents() override;
    bool waitForEvent(int milliseconds) override;
    void schedule(qint64 delayMs, QObject* context, std::function<void()> task) override;

    // Schedules `delivery` to run `delayMs` from now, inside whichever wait or event
    // processing first reaches that time. Deliveries due at the same time run in the order
    // they were scheduled.
    void schedule(qint64 delayMs, Delivery delivery);

    // Virtual milliseconds since the pump was made.
    qint64 elapsedMs() const { return m_nowMs; }

    // Moves the clock forward as an idle pause outside any wait would, without handling events.
    void advance(qint64 ms) { m_nowMs += ms; }

    bool hasPendingDeliveries() const { return !m_agenda.empty(); }

private:
    QDateTime m_start;
    qint64 m_nowMs = 0;
    std::multimap<qint64, Delivery> m_agenda;
};

} // namespace larkspur
