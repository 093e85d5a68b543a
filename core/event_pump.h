#pragma once

#include <QDateTime>

#include <functional>

class QObject;

namespace larkspur {

// Every wait of the console goes through this interface, so the real program blocks in its
// event loop while tests run the same waits in virtual time.
class EventPump {
public:
    virtual ~EventPump() = default;

    // The clock every wait and pause reads: seconds from an arbitrary start that never go back
    // nor wrap, so a wait keeps its length across midnight, a clock adjustment and a week of
    // running. Deadlines on it are compared in double precision.
    virtual double monotonicSeconds() const = 0;

    // The date and time stamped on error records.
    virtual QDateTime currentDateTime() const = 0;

    // Handles everything that is pending now, without waiting.
    virtual void processEvents() = 0;

    // Returns true as soon as an event is pending (without handling it necessarily), or false
    // once `milliseconds` have passed with none. With 0 it only looks.
    virtual bool waitForEvent(int milliseconds) = 0;

    // Runs `task` once, `delayMs` from now, inside whichever event processing or wait reaches
    // that time; never once `context` is destroyed, so its owner need not cancel it. Tasks due
    // at the same time run in the order they were scheduled.
    virtual void schedule(qint64 delayMs, QObject* context, std::function<void()> task) = 0;

    // Asked when the console closes: every pause and wait then ends at its next look, so the
    // nested waits unwind before anything is torn down.
    void requestStop() { m_stopRequested = true; }
    void clearStop() { m_stopRequested = false; }
    bool stopRequested() const { return m_stopRequested; }

private:
    bool m_stopRequested = false;
};

} // namespace larkspur
