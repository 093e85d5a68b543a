#include "common/qt_printers.h"
#include "console/link_status.h"
#include "console/system_info.h"
#include "link/link.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// Connected, closed and lost are shown by the window's tests.
TEST(StatusText, NamesTheLinkAndItsState) {
    LinkSettings tcp;
    LinkSettings numbered;
    numbered.useTcp = false;
    numbered.commPortNumber = "2";
    EXPECT_EQ(linkStatusText(tcp, LinkState::Connecting, ""), "TCP 127.0.0.1:15374 connecting...");
    EXPECT_EQ(linkStatusText(tcp, LinkState::NoResponse, ""),
              "TCP 127.0.0.1:15374 open, no response from PBX");
    EXPECT_EQ(linkStatusText(numbered, LinkState::Closed, ""), "serial /dev/ttyS1 closed");
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
