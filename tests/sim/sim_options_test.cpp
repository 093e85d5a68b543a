#include "sim/sim_options.h"

#include <gtest/gtest.h>

using namespace larkspur::sim;

namespace {

SimOptions parsed(const QStringList& arguments) {
    const ParsedArguments result = parseSimArguments(arguments);
    EXPECT_TRUE(result.options.has_value())
        << arguments.join(' ').toStdString() << ": " << result.error.toStdString();
    return result.options.value_or(SimOptions{});
}

TEST(SimOptions, ListenAndPtyCombine) {
    struct Case {
        QStringList arguments;
        bool listen;
        QHostAddress address;
        quint16 port;
        bool pty;
        QString link;
    } cases[] = {
        {{}, true, QHostAddress::LocalHost, 15374, false, ""},
        {{"--listen", "0.0.0.0:0"}, true, QHostAddress("0.0.0.0"), 0, false, ""},
        {{"--listen", "[::1]:65535"}, true, QHostAddress::LocalHostIPv6, 65535, false, ""},
        // A pty alone means a serial console only.
        {{"--pty", "--mode", "VMAIL"}, false, QHostAddress::LocalHost, 15374, true, ""},
        {{"--pty", "--listen", "127.0.0.1:9"}, true, QHostAddress::LocalHost, 9, true, ""},
        {{"--listen", "127.0.0.1:9", "--pty", "l"}, true, QHostAddress::LocalHost, 9, true, "l"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const SimOptions o = parsed(c.arguments);
        EXPECT_EQ(o.listen, c.listen);
        EXPECT_EQ(o.listenAddress, c.address);
        EXPECT_EQ(o.listenPort, c.port);
        EXPECT_EQ(o.pty, c.pty);
        EXPECT_EQ(o.ptyLink, c.link);
    }
}

TEST(SimOptions, MessagesKeepTheirOrderAndAreFramed) {
    const SimOptions o = parsed({"--at", "0.05", "RQINZ     ", "--after", "STS", "0", "<ENQ>",
                                 "--at", "2", "<STX>A<ETX>", "--after", "<ACK>M", "1.5", "MW"});
    ASSERT_EQ(o.at.size(), 2);
    EXPECT_DOUBLE_EQ(o.at[0].seconds, 0.05);
    EXPECT_EQ(o.at[0].bytes, "\x02RQINZ     \x03");
    EXPECT_DOUBLE_EQ(o.at[1].seconds, 2);
    EXPECT_EQ(o.at[1].bytes, "\002A\x03");
    ASSERT_EQ(o.after.size(), 2);
    EXPECT_EQ(o.after[0].match, "STS");
    EXPECT_DOUBLE_EQ(o.after[0].seconds, 0);
    EXPECT_EQ(o.after[0].bytes, "\x05");
    // MATCH is notation but never framed: it is compared with the text inside a frame.
    EXPECT_EQ(o.after[1].match, "\x06M");
    EXPECT_DOUBLE_EQ(o.after[1].seconds, 1.5);
    EXPECT_EQ(o.after[1].bytes, "\x02MW\x03");
}

// Each case's arguments, split at blanks.
TEST(SimOptions, BadArgumentsAreRefusedWithAReason) {
    const char* cases[] = {"--listen",
                           "--listen 127.0.0.1",
                           "--listen 127.0.0.1:",
                           "--listen 127.0.0.1:65536",
                           "--listen 127.0.0.1:-1",
                           "--listen nowhere:80",
                           "--listen ::1:80",
                           "--mode hotel",
                           "--mode",
                           "--on-enq yes",
                           "--on-frame",
                           "--at 1",
                           "--at -1 X",
                           "--at soon X",
                           "--at nan X",
                           "--at inf X",
                           "--at 1e7 X",
                           "--at 1 \\xZZ",
                           "--after STS 0",
                           "--after <BAD> 0 X",
                           "--after STS x X",
                           "--after STS 0 <ETX",
                           "--trace",
                           "--line-speed 0",
                           "--line-speed fast",
                           "--split 0",
                           "--split 1.5",
                           "--split-gap -0.1",
                           "--verbose",
                           "stray",
                           "--pty a b",
                           "--on-enq ack,",
                           "--on-frame ,nak",
                           "--on-frame ack,,nak",
                           "--on-enq ack\tnak",
                           "--answer-delay -0.1",
                           "--answer-delay",
                           "--answer-delay 20ms"};
    for (const char* arguments : cases) {
        const ParsedArguments result = parseSimArguments(QString(arguments).split(' '));
        EXPECT_FALSE(result.options.has_value()) << arguments;
        EXPECT_FALSE(result.error.isEmpty()) << arguments;
    }
}

} // namespace
