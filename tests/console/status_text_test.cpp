#include "common/qt_printers.h"
#include "console/link_status.h"
#include "console/system_info.h"
#include "link/link.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(StatusText, NamesTheLinkAndItsState) {
    LinkSettings tcp;
    LinkSettings serial;
    serial.useTcp = false;
    serial.commPortNumber = "/dev/ttyUSB0";
    LinkSettings numbered = serial;
    numbered.commPortNumber = "2";
    const struct {
        const LinkSettings& settings;
        LinkState state;
        const char* reason;
        const char* text;
    } cases[] = {
        {tcp, LinkState::Connected, "", "TCP 127.0.0.1:15374 connected"},
        {tcp, LinkState::Connecting, "", "TCP 127.0.0.1:15374 connecting..."},
        {tcp, LinkState::NoResponse, "", "TCP 127.0.0.1:15374 open, no response from PBX"},
        {tcp, LinkState::Lost, "closed by the PBX", "TCP 127.0.0.1:15374 lost: closed by the PBX"},
        {serial, LinkState::Closed, "", "serial /dev/ttyUSB0 closed"},
        {numbered, LinkState::Closed, "", "serial /dev/ttyS1 closed"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(linkStatusText(c.settings, c.state, c.reason), c.text);
    EXPECT_EQ(modeStatusText(PmsMode::Vmail, Protocol::His), "VMAIL mode, HIS protocol");
}

TEST(SystemInfo, MemoryFromMeminfo) {
    const QByteArray meminfo = "MemTotal:       16303452 kB\n"
                               "MemFree:         1234567 kB\n"
                               "MemAvailable:    8151726 kB\n";
    EXPECT_EQ(meminfoAmount(meminfo, "MemTotal"), "15.5 GiB");
    EXPECT_EQ(meminfoAmount(meminfo, "MemAvailable"), "7.8 GiB");
    EXPECT_EQ(meminfoAmount(meminfo, "Mem"), "") << "a key is matched whole";
    EXPECT_EQ(meminfoAmount("", "MemTotal"), "");
    EXPECT_TRUE(systemDetails().contains("Processors: "));
}

} // namespace
