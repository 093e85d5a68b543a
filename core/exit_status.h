#pragma once

namespace larkspur::exitcode {

// Exit statuses of the headless programs; other tools parse them.
constexpr int ok = 0;
constexpr int failed = 1;        // failed transactions or failed waits
constexpr int checkWarnings = 1; // --check: the script will not play as written
constexpr int noLink = 2;
constexpr int badScript = 3;
constexpr int linkLost = 4;
constexpr int reportsUnwritten =
    5; // a report, a trace or the traffic log could not be written whole
constexpr int usage = 64;
constexpr int hungUp = 129;
constexpr int interrupted = 130;

} // namespace larkspur::exitcode
