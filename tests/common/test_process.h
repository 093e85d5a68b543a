#pragma once

#include <QProcess>

#include <functional>

namespace larkspur::test {

// Waits until `condition` holds, running the Qt event loop (blocked in it, looking again at
// least every 50 ms), for at most `timeoutMs` of real time. Returns whether it holds.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 5000);

// A program a test runs. It goes down with the test process however that ends (a failed
// assertion, a crash, ctest's SIGKILL at the time-out, an interrupt), and the destructor ends it
// when the test did not: nothing a test starts outlives it. Programs that start others of their
// own are not run this way, so that nothing is left a grandchild.
class TestProcess : public QProcess {
public:
    TestProcess();
    ~TestProcess() override; // SIGTERM, then SIGKILL if it lingers

    // Waits for it to end, running the event loop: its exit status, or -1 when it crashed or did
    // not end in time (it is killed then).
    int waitForExit(int timeoutMs);
    // Sends `signal`, then waits as above.
    int stop(int signal, int timeoutMs);
};

} // namespace larkspur::test
