#include <QApplication>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

// Widget tests need a full application object (run offscreen by ctest), on the smallest screen
// the console is made for. A test program goes down with whatever runs it.
int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" LARKSPUR_TEST_SCREEN);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
