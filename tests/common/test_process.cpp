#include "common/test_process.h"

#include "core/qt_event_pump.h"

#include <QElapsedTimer>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace larkspur::test {

bool waitUntil(const std::function<bool()>& condition, int timeoutMs) {
    QtEventPump pump;
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        const qint64 left = timeoutMs - clock.elapsed();
        if (left <= 0)
            return false;
        // Some conditions come without an event (a line in a file another program writes):
        // look again at least every 50 ms.
        pump.waitForEvent(int(qMin<qint64>(left, 50)));
    }
    return true;
}

TestProcess::TestProcess() {
    setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        // The test may have ended between the fork and the line above.
        if (::getppid() != parent)
            ::_exit(127);
    });
}

TestProcess::~TestProcess() {
    // Its owner's members that its signals feed may be gone already.
    disconnect(this, nullptr, nullptr, nullptr);
    if (state() == NotRunning)
        return;
    terminate();
    if (!waitForFinished(5000)) {
        kill();
        waitForFinished(5000);
    }
}

int TestProcess::waitForExit(int timeoutMs) {
    if (!waitUntil([this] { return state() == NotRunning; }, timeoutMs)) {
        kill();
        waitForFinished(5000);
        return -1;
    }
    return exitStatus() == NormalExit ? exitCode() : -1;
}

int TestProcess::stop(int signal, int timeoutMs) {
    ::kill(pid_t(processId()), signal);
    return waitForExit(timeoutMs);
}

} // namespace larkspur::test
