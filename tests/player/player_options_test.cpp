#include "common/qt_printers.h"
#include "player/player_options.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(PlayerOptions, ReadsEveryOption) {
    QString error;
    // clang-format off
    const auto o = parsePlayerOptions({"--tcp", "pbx.lab:2001", "--line", "9600,E,7,1", "--dtr", "--rts", "--null-discard", "--mode", "VMAIL", "--protocol", "HIS", "--error-mode", "--continuous", "--connect-timeout", "2.5", "--no-settings", "--save-log", "a.log", "--error-report", "e.txt", "--junit", "j.xml", "s.txt"}, error);
    // clang-format on
    ASSERT_TRUE(o) << error;
    EXPECT_EQ(*o->tcpHost, "pbx.lab");
    EXPECT_EQ(*o->tcpPort, "2001");
    EXPECT_EQ(o->line, "9600,E,7,1");
    EXPECT_TRUE(o->dtr && o->rts && o->nullDiscard && o->errorMode && o->continuous &&
                o->noSettings);
    EXPECT_EQ(*o->mode, PmsMode::Vmail);
    EXPECT_EQ(*o->protocol, Protocol::His);
    EXPECT_DOUBLE_EQ(o->connectTimeoutSeconds, 2.5);
    EXPECT_EQ(QStringList({o->saveLog, o->errorReport, o->junit, o->script}),
              QStringList({"a.log", "e.txt", "j.xml", "s.txt"}));

    const auto v6 = parsePlayerOptions({"--tcp", "[::1]:2001", "s"}, error);
    ASSERT_TRUE(v6) << error;
    EXPECT_EQ(*v6->tcpHost + " " + *v6->tcpPort, "::1 2001");
}

TEST(PlayerOptions, RejectsWithAReason) {
    struct Case {
        QStringList arguments;
        const char* mentions;
    } cases[] = {
        // clang-format off
        {{}, "no script"}, {{"a", "b"}, "one too many"}, {{"-x", "s"}, "unknown option"}, {{"--junit"}, "--junit needs FILE"},
        {{"--tcp", "host", "s"}, "HOST:PORT"}, {{"--tcp", "host:0", "s"}, "HOST:PORT"}, {{"--tcp", "::1:15374", "s"}, "brackets"},
        {{"--tcp", "h:1", "--serial", "1", "s"}, "exclude"}, {{"--protocol", "hyatt", "s"}, "HYATT or HIS"},
        {{"--connect-timeout", "0", "s"}, "above 0"}, {{"--connect-timeout", "nan", "s"}, "above 0"},
        {{"--connect-timeout", "inf", "s"}, "above 0"}, {{"--connect-timeout", "-inf", "s"}, "above 0"},
        {{"--line", "9600,N,8", "s"}, "SPEED,PARITY"}, {{"--line", "9600,X,8,1", "s"}, "parity"}, {{"--line", "9600,N,9,1", "s"}, "data bits"},
        {{"--line", "0,N,8,1", "s"}, "speed"}, {{"--line", "9600,N,8,3", "s"}, "stop bits"},
        // clang-format on
    };
    for (auto& c : cases) {
        QString error;
        EXPECT_FALSE(parsePlayerOptions(c.arguments, error)) << c.arguments.join(' ').toStdString();
        EXPECT_TRUE(error.contains(c.mentions)) << error.toStdString();
    }
}

} // namespace
