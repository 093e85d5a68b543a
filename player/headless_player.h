#pragma once

#include "core/exit_status.h"

namespace larkspur {

struct PlayerOptions;

// Connects as the Connect button does, plays the script as Run Script does, disconnects.
// The traffic log goes to standard output, notices to standard error. Needs a
// QCoreApplication. Returns the exit status.
int runHeadless(const PlayerOptions& options);

} // namespace larkspur
