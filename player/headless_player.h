#pragma once

namespace larkspur {

struct PlayerOptions;

// Exit statuses of the headless player; other tools parse them.
namespace exitcode {
constexpr int ok = 0;
constexpr int failed = 1;        // failed transactions or failed waits
constexpr int checkWarnings = 1; // --check: the script will not play as written
constexpr int noLink = 2;
constexpr int badScript = 3;
constexpr int linkLost = 4;
constexpr int reportsUnwritten = 5; // a report or the traffic log could not be written whole
constexpr int usage = 64;
constexpr int hungUp = 129;
constexpr int interrupted = 130;
} // namespace exitcode

// Connects as the Connect button does, plays the script as Run Script does, disconnects.
// The traffic log goes to standard output, notices to standard error. Needs a
// QCoreApplication. Returns the exit status.
int runHeadless(const PlayerOptions& options);

} // namespace larkspur
