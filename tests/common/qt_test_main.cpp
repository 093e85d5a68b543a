#include <QCoreApplication>
#include <gtest/gtest.h>

// Tests of Qt transports and the Qt pump need an application object; the rest ignore it.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
