#include <QCoreApplication>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

// Tests of Qt transports and the Qt pump need an application object; the rest ignore it. A test
// program goes down with whatever runs it, ctest killed included, and its programs with it.
int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
