#pragma once

#include <QString>

#include <functional>

namespace larkspur {

// Runs `onSignal` from the event loop each time SIGINT or SIGTERM arrives, instead of letting
// the process die where it stands. Call once, after the application object exists. False with a
// reason in `error`.
bool watchTerminationSignals(std::function<void()> onSignal, QString* error);

} // namespace larkspur
