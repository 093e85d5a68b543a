#include <QApplication>
#include <gtest/gtest.h>

// Widget tests need a full application object (run offscreen by ctest), on the smallest screen
// the console is made for.
int main(int argc, char** argv) {
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" LARKSPUR_TEST_SCREEN);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
