// larkspur-run and the settings the window stored: read by default, ignored with --no-settings.
#include "common/player_fixture.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace larkspur::test;

namespace {

using PlayerSettings = PlayerFixture;

// Each stored line setting makes the run over the simulator's pty fail to connect; with
// --no-settings the first-run default line plays it clean.
TEST_F(PlayerSettings, NoSettingsIgnoresWhatTheWindowStored) {
    struct Case {
        const char* stored; // lines of the [Startup] group
        const char* refusal;
    } cases[] = {
        {"Parity=E\nDatabit=7\n", "parity"},
        {"Speed=fast\n", "speed"},
    };
    PbxSimProcess sim({"--pty"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const QString played = script("CHK1   101\r\n;\r\n");
    ASSERT_TRUE(QDir(home.path()).mkpath("Larkspur"));
    for (const Case& c : cases) {
        file("Larkspur/Larkspur.conf", QByteArray("[Startup]\n") + c.stored);
        const QStringList arguments = {"--serial", sim.ptyPath(), "--connect-timeout", "5", played};

        out.clear();
        err.clear();
        start(arguments);
        EXPECT_EQ(finish(), 2) << c.stored << err.toStdString();
        EXPECT_TRUE(err.contains(c.refusal)) << c.stored << err.toStdString();

        out.clear();
        err.clear();
        start(QStringList{"--no-settings"} + arguments);
        EXPECT_EQ(finish(), 0) << c.stored << err.toStdString();
        EXPECT_TRUE(errLines().contains("larkspur-run: Script file completed"))
            << c.stored << err.toStdString();
    }
}

} // namespace
