#include "common/link_fixture.h"
#include "link/settings_store.h"

#include <QSettings>
#include <QTemporaryDir>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class SettingsStore : public LinkFixture {
protected:
    QTemporaryDir dir;
    QString path() const { return dir.filePath("larkspur.ini"); }
};

TEST_F(SettingsStore, FirstRunDefaults) {
    QSettings store(path(), QSettings::IniFormat);
    loadLinkSettings(store, link);
    EXPECT_EQ(link.pmsMode(), PmsMode::Hotel);
    EXPECT_EQ(link.protocolType(), Protocol::Hyatt);
    EXPECT_TRUE(link.settings().useTcp);
    EXPECT_EQ(link.settings().ipAddress, "127.0.0.1");
    EXPECT_EQ(link.settings().telnetPort, "15374");
    EXPECT_EQ(link.settings().commPortNumber, "1");
    EXPECT_EQ(QStringList({link.settings().speed, link.settings().parity, link.settings().dataBits,
                           link.settings().stopBits, link.settings().handShake}),
              QStringList({"1200", "N", "8", "2", "comXOnXoff"}));
}

TEST_F(SettingsStore, UnknownValuesFallToTheOtherChoice) {
    {
        QSettings store(path(), QSettings::IniFormat);
        store.setValue("Startup/ProtocolType", "hyatt");
        store.setValue("Startup/ConnectionType", "telnet");
        store.setValue("Startup/PMSMode", "Voice");
    }
    QSettings store(path(), QSettings::IniFormat);
    loadLinkSettings(store, link);
    EXPECT_EQ(link.protocolType(), Protocol::His);
    EXPECT_FALSE(link.settings().useTcp);
    EXPECT_EQ(link.pmsMode(), PmsMode::Vmail);
}

TEST_F(SettingsStore, RoundTrip) {
    link.settings().ipAddress = "10.1.2.3";
    link.settings().commPortNumber = "/dev/pts/4";
    link.settings().stopBits = "1.5";
    link.settings().useTcp = false;
    link.setMode(PmsMode::Vmail, link.protocolType());
    link.setMode(link.pmsMode(), Protocol::His);
    {
        QSettings store(path(), QSettings::IniFormat);
        saveLinkSettings(store, link);
        EXPECT_EQ(store.value("Startup/ConnectionType").toString(), "CommPort");
    }
    link.settings() = LinkSettings();
    link.setMode(PmsMode::Hotel, link.protocolType());
    QSettings store(path(), QSettings::IniFormat);
    loadLinkSettings(store, link);
    EXPECT_EQ(link.settings().ipAddress, "10.1.2.3");
    EXPECT_EQ(link.settings().commPortNumber, "/dev/pts/4");
    EXPECT_EQ(link.settings().stopBits, "1.5");
    EXPECT_FALSE(link.settings().useTcp);
    EXPECT_EQ(link.pmsMode(), PmsMode::Vmail);
    EXPECT_EQ(link.protocolType(), Protocol::His);
}

} // namespace
