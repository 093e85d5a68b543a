#include "core/pause.h"

#include "core/event_pump.h"

#include <algorithm>
#include <cmath>

namespace larkspur {

void pause_seconds(EventPump& pump, float seconds) {
    int remainingMs = int(std::lround(double(seconds) * 1000.0));
    const double start = pump.monotonicSeconds();
    for (;;) {
        if (pump.stopRequested() || !pump.waitForEvent(remainingMs))
            return;
        pump.processEvents();
        // The clock never goes back, so midnight needs no correction of the start here.
        const double passed = pump.monotonicSeconds() - start;
        remainingMs = int(std::lround(std::max(0.0, (double(seconds) - passed) * 1000.0)));
    }
}

} // namespace larkspur
