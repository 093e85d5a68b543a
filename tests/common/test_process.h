#pragma once

#include <QProcess>

namespace larkspur::test {

// A program a test runs. It goes down with the test process however that ends (a failed
// assertion, a crash, ctest's SIGKILL at the time-out, an interrupt), and the destructor ends it
// when the test did not: nothing a test starts outlives it. Programs that start others of their
// own are not run this way, so that nothing is left a grandchild.
class TestProcess : public QProcess {
public:
    TestProcess();
};

} // namespace larkspur::test
