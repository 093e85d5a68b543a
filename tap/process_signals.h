#pragma once

#include <QString>

#include <functional>

namespace larkspur::tap {

// Runs `onSignal` from the event loop when SIGHUP arrives, as watchTerminationSignals does for
// SIGINT and SIGTERM. Call once, after the application object exists. False with the reason in
// `error`.
bool watchHangUpSignal(std::function<void()> onSignal, QString* error);

// A peer or a reader of the trace that went away makes a write fail instead of ending the
// process: the relay must outlive both.
void ignoreBrokenPipes();

} // namespace larkspur::tap
