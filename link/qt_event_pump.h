#pragma once

#include "link/event_pump.h"

#include <QElapsedTimer>

namespace larkspur {

// The production pump: waits block in Qt's event loop and cost no CPU.
class QtEventPump : public EventPump {
public:
    QtEventPump();

    double secondsSinceMidnight() const override;
    QDateTime currentDateTime() const override;
    void processEvents() override;
    bool waitForEvent(int milliseconds) override;

private:
    // A monotonic clock anchored to the wall clock once, so a clock adjustment never stretches
    // or cuts a wait short.
    QElapsedTimer m_elapsed;
    qint64 m_midnightOffsetMs;
    QDateTime m_startDateTime;
};

} // namespace larkspur
