#pragma once

#include <QString>

#include <functional>

namespace larkspur {

// How the program was asked to end: Ctrl+C, a polite kill, or the terminal (an SSH session)
// going away.
enum class Termination { Interrupt, Terminate, HangUp };

// Runs `onSignal` from the event loop each time SIGINT, SIGTERM or SIGHUP arrives, instead of
// letting the process die where it stands. Call once, after the application object exists.
// False with a reason in `error`.
bool watchTerminationSignals(std::function<void(Termination)> onSignal, QString* error);

// Whether one of them came since the watch began (before the event loop has run the handler).
bool terminationRequested();

// A write to a pipe or socket whose reader has gone fails with an error (EPIPE) instead of
// ending the program, so `larkspur-run ... | head` still writes its reports.
void ignoreBrokenPipes();

// While one lives, the termination signals end a blocking call (the open of a FIFO nobody
// writes, the read of a silent pipe) with EINTR instead of resuming it, so a program waiting
// for its input can still be stopped.
class InterruptibleCalls {
public:
    InterruptibleCalls();
    ~InterruptibleCalls();
    InterruptibleCalls(const InterruptibleCalls&) = delete;
    InterruptibleCalls& operator=(const InterruptibleCalls&) = delete;
};

} // namespace larkspur
