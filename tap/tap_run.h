#pragma once

namespace larkspur::tap {

struct TapOptions;

namespace exitcode {
constexpr int ok = 0;
constexpr int noLink = 2;
constexpr int outputFailed = 5;
constexpr int usage = 64;
constexpr int hungUp = 129;
constexpr int interrupted = 130;
} // namespace exitcode

// Watches the link the options name until SIGINT, SIGTERM or SIGHUP (or, with --once, until the
// first session ends): the trace on standard output and in --trace, the statistics at the end,
// the learned script in --learn. Notices go to standard error. Needs a QCoreApplication.
// Returns the exit status.
int runTap(const TapOptions& options);

} // namespace larkspur::tap
