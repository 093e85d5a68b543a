#include "core/pause.h"

#include "core/event_pump.h"

#include <cmath>

namespace larkspur {

void pause_seconds(EventPump& pump, float seconds) {
    int remainingMs = int(std::lround(double(seconds) * 1000.0));
    double start = pump.secondsSinceMidnight();
    for (;;) {
        if (pump.stopRequested() || !pump.waitForEvent(remainingMs))
            return;
        pump.processEvents();
        const double now = pump.secondsSinceMidnight();
        // Past midnight the clock restarts at 0; the one-second allowance is kept as it always was.
        if (now - start + 1.0 < 0.0)
            start = 0.0;
        remainingMs = int(std::lround(std::max(0.0, (double(seconds) - (now - start)) * 1000.0)));
    }
}

} // namespace larkspur
