#pragma once

#include "core/exit_status.h"

namespace larkspur::tap {

struct TapOptions;

// Watches the link the options name until SIGINT, SIGTERM or SIGHUP (or, with --once, until the
// first session ends): the trace on standard output and in --trace, the statistics at the end,
// the learned script in --learn. Notices go to standard error. Needs a QCoreApplication.
// Returns the exit status.
int runTap(const TapOptions& options);

} // namespace larkspur::tap
