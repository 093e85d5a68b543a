#include <QApplication>
#include <gtest/gtest.h>

// Widget tests need a full application object (run offscreen by ctest).
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
