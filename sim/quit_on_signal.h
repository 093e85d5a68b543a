#pragma once

class QString;

namespace larkspur::sim {

// Makes SIGINT and SIGTERM quit the application's event loop, so that destructors run (the
// pseudo-terminal's symlink is removed) instead of the process dying where it stands. Call once,
// after the application object exists. False with a reason in `error`.
bool quitOnTerminationSignals(QString* error);

} // namespace larkspur::sim
