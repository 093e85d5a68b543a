#pragma once

#include <QString>

#include <functional>

namespace larkspur {

// Runs `onSignal` from the event loop each time SIGINT or SIGTERM arrives, instead of letting
// the process die where it stands. Call once, after the application object exists. False with a
// reason in `error`.
bool watchTerminationSignals(std::function<void()> onSignal, QString* error);

// Whether SIGINT or SIGTERM came since the watch began (before the event loop has run the
// handler).
bool terminationRequested();

// While one lives, SIGINT and SIGTERM end a blocking call (the open of a FIFO nobody writes,
// the read of a silent pipe) with EINTR instead of resuming it, so a program waiting for its
// input can still be stopped.
class InterruptibleCalls {
public:
    InterruptibleCalls();
    ~InterruptibleCalls();
    InterruptibleCalls(const InterruptibleCalls&) = delete;
    InterruptibleCalls& operator=(const InterruptibleCalls&) = delete;
};

} // namespace larkspur
