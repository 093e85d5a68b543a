// The tap's command line: the three kinds of link, and every wrong line refused with a reason.
#include "tap/tap_options.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::tap;

namespace {

TEST(TapOptions, EachKindOfLinkWithItsOptions) {
    const struct {
        QStringList arguments;
        TapOptions::Links links;
        QString pmsPort, pbxPort;
    } cases[] = {
        {{"--listen", "127.0.0.1:0", "--pbx", "10.0.0.5:15374"}, TapOptions::Links::Tcp, "", ""},
        {{"--pms-serial", "/dev/ttyUSB0", "--pbx-serial", "2"},
         TapOptions::Links::Serial,
         "/dev/ttyUSB0",
         "/dev/ttyS1"},
        {{"--monitor-pms", "/dev/ttyUSB0"}, TapOptions::Links::Monitor, "/dev/ttyUSB0", ""},
        {{"--monitor-pbx", "/dev/ttyUSB1", "--line", "1200,E,7,2"},
         TapOptions::Links::Monitor,
         "",
         "/dev/ttyUSB1"},
    };
    for (const auto& c : cases) {
        QString error;
        const auto options = parseTapOptions(c.arguments, error);
        ASSERT_TRUE(options) << c.arguments.join(' ').toStdString() << ": " << error.toStdString();
        EXPECT_EQ(options->links, c.links) << c.arguments.join(' ').toStdString();
        EXPECT_EQ(options->pmsPort, c.pmsPort);
        EXPECT_EQ(options->pbxPort, c.pbxPort);
    }
    // Host names, and the options the end-to-end tests never pass.
    QString error;
    const auto all = parseTapOptions({"--listen", "localhost:15375", "--pbx", "pbx.hotel:15374",
                                      "--connect-timeout", "2.5", "--frame-gap", "250"},
                                     error);
    ASSERT_TRUE(all) << error.toStdString();
    EXPECT_EQ(all->listen.host, "localhost");
    EXPECT_EQ(all->listen.port, 15375);
    EXPECT_EQ(all->pbx.host, "pbx.hotel");
    EXPECT_EQ(all->connectTimeoutSeconds, 2.5);
    EXPECT_EQ(all->frameGapMs, 250);
}

TEST(TapOptions, WrongLinesAreRefusedWithTheReason) {
    const QStringList tcp = {"--listen", "127.0.0.1:0", "--pbx", "127.0.0.1:15374"};
    const struct {
        QStringList arguments;
        const char* error; // how the reason starts
    } cases[] = {
        {{}, "nothing to watch"},
        {{"--listen", "127.0.0.1:0"}, "a TCP relay needs --listen and --pbx"},
        {{"--pbx", "127.0.0.1:15374"}, "a TCP relay needs --listen and --pbx"},
        {{"--pms-serial", "/dev/ttyS0"}, "a serial relay needs --pms-serial and --pbx-serial"},
        {{"--pms-serial", "/dev/ttyS0", "--pbx-serial", "/dev/ttyS0"},
         "/dev/ttyS0 is named for both sides"},
        {{"--listen", "127.0.0.1:0", "--pms-serial", "/dev/ttyS0"}, "--pms-serial does not go"},
        {{"--monitor-pms", "/dev/ttyS0", "--pbx-serial", "/dev/ttyS1"}, "--pbx-serial does not go"},
        {{"--listen", "127.0.0.1"}, "--listen: \"127.0.0.1\" is not HOST:PORT"},
        {{"--listen", "pms.hotel:15375", "--pbx", "127.0.0.1:1"},
         "--listen: \"pms.hotel\" is not an address to listen on"},
        {{"--pbx", "127.0.0.1:0", "--listen", "127.0.0.1:0"}, "--pbx: \"127.0.0.1:0\" is not"},
        {{"--pms-serial", ""}, "--pms-serial: wants a port number or device"},
        {{"--pms-serial"}, "--pms-serial needs PORT"},
        {tcp + QStringList{"--line", "9600,N,8,1"}, "--line goes with serial ports"},
        {{"--monitor-pms", "/dev/ttyS0", "--line", "fast"}, "--line: wants SPEED,PARITY,DATA,STOP"},
        {{"--monitor-pms", "/dev/ttyS0", "--connect-timeout", "3"},
         "--connect-timeout goes with --pbx"},
        {tcp + QStringList{"--connect-timeout", "0"}, "--connect-timeout: \"0\" is not a number"},
        {tcp + QStringList{"--connect-timeout", "nan"}, "--connect-timeout: \"nan\" is not a"},
        {tcp + QStringList{"--mode", "hotel"}, "--mode: \"hotel\" is not HOTEL or VMAIL"},
        {tcp + QStringList{"--protocol", "XYZ"}, "--protocol: \"XYZ\" is not HYATT or HIS"},
        {tcp + QStringList{"--frame-gap", "0"},
         "--frame-gap: \"0\" is not a whole number from 1 to 60000"},
        {tcp + QStringList{"--trace", ""}, "--trace: wants a value"},
        {tcp + QStringList{"--learn-waits"}, "--learn-waits goes with --learn"},
        {tcp + QStringList{"--learn", "s.txt", "--learn-waits", "--mode", "VMAIL"},
         "--learn-waits: a voice-mail script has no waits"},
        {tcp + QStringList{"--trace", "same.txt", "--learn", "same.txt"},
         "--trace and --learn name the same file"},
        {tcp + QStringList{"--verbose"}, "unknown option --verbose"},
        {tcp + QStringList{"script.txt"}, "\"script.txt\" is not an option"},
    };
    for (const auto& c : cases) {
        QString error;
        EXPECT_FALSE(parseTapOptions(c.arguments, error)) << c.arguments.join(' ').toStdString();
        EXPECT_TRUE(error.startsWith(QLatin1String(c.error)))
            << c.arguments.join(' ').toStdString() << ": " << error.toStdString();
    }
}

} // namespace
