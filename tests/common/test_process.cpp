#include "common/test_process.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace larkspur::test {

TestProcess::TestProcess() {
    setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        // The test may have ended between the fork and the line above.
        if (::getppid() != parent)
            ::_exit(127);
    });
}

} // namespace larkspur::test
