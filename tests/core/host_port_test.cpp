#include "common/qt_printers.h"
#include "core/host_port.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(HostPort, ReadsWhatBothProgramsTake) {
    const struct {
        QString text;
        bool portZero;
        QString host; // empty: refused
        quint16 port;
    } cases[] = {
        {"127.0.0.1:15374", false, "127.0.0.1", 15374},
        {"pbx.lab:2001", false, "pbx.lab", 2001},
        {"[::1]:15374", false, "::1", 15374},
        {"[fe80::1%eth0]:1", false, "fe80::1%eth0", 1},
        {"127.0.0.1:0", true, "127.0.0.1", 0},
        {"127.0.0.1:0", false, "", 0},
        {"::1:15374", false, "", 0},
        {"127.0.0.1", false, "", 0},
        {":15374", false, "", 0},
        {"[]:15374", false, "", 0},
        {"host:65536", false, "", 0},
        {"host:-1", false, "", 0},
        {"host:", false, "", 0},
    };
    for (const auto& c : cases) {
        QString error;
        const auto endpoint = parseHostPort(c.text, c.portZero, &error);
        if (c.host.isEmpty()) {
            EXPECT_FALSE(endpoint) << c.text;
            EXPECT_TRUE(error.contains(c.text)) << error;
            continue;
        }
        ASSERT_TRUE(endpoint) << c.text << error;
        EXPECT_EQ(endpoint->host, c.host);
        EXPECT_EQ(endpoint->port, c.port);
        EXPECT_EQ(formatHostPort(endpoint->host, QString::number(endpoint->port)), c.text);
    }
}

} // namespace
