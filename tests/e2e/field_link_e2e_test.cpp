// larkspur-run against a simulator that writes the way real lines deliver: byte by byte at line
// speed over a pty, in pieces over TCP, and the same in a dry run's virtual time.
#include "common/player_fixture.h"

#include <gtest/gtest.h>

using namespace larkspur::test;

namespace {

using FieldLink = PlayerFixture;

// A check-in the PBX answers with a status message once the script waits for it, and that wait.
const QByteArray checkInAndWait = "CHK1   101\r\nWAIT STS1   101 5\r\n;\r\n";
const QStringList answersWithStatus = {"--after", "CHK1", "1.5", "STS1   101"};

// Every line the receiver logged, which must be whole messages and never pieces of one.
QStringList receivedLines(const QStringList& lines) {
    return lines.filter(QStringLiteral("Received--> "));
}

TEST_F(FieldLink, AFrameTrickledAtLineSpeedOverAPtyIsOneMessage) {
    PbxSimProcess sim(QStringList{"--pty", "--line-speed", "1200"} + answersWithStatus);
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    start({"--serial", sim.ptyPath(), "--line", "1200,N,8,2", script(checkInAndWait)});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(receivedLines(outLines()), QStringList({"Received--> ACK", "Received--> ACK",
                                                      "Received--> ACK", "Received--> STS1   101"}))
        << out.toStdString();
    EXPECT_TRUE(outLines().contains("successfully received --> sts1"));
    // The simulator wrote the status one byte at a time and got its ACK for the whole of it.
    ASSERT_TRUE(sim.waitForTraceLines(1));
    const QStringList trace = sim.traceLines();
    const qsizetype etx = trace.lastIndexOf("TX <ETX>");
    ASSERT_GE(etx, 0) << trace.join(", ").toStdString();
    EXPECT_EQ(trace.value(etx - 11), "TX <STX>");
    EXPECT_EQ(trace.mid(etx + 1), QStringList{"RX <ACK>"}) << trace.join(", ").toStdString();
}

TEST_F(FieldLink, AFrameInTwoTcpSegmentsIsOneMessage) {
    PbxSimProcess sim(QStringList{"--split", "5", "--split-gap", "0.02"} + answersWithStatus);
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    start({"--tcp", tcp(sim), script(checkInAndWait)});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(receivedLines(outLines()).last(), "Received--> STS1   101") << out.toStdString();
    EXPECT_EQ(outLines().filter("Received--> STS1").size(), 1);
    EXPECT_TRUE(outLines().contains("successfully received --> sts1"));
}

TEST_F(FieldLink, AVoiceMailStatusTrickledAt9600BaudIsLoggedWhole) {
    const QByteArray checkIn = QByteArray("\x02"
                                          "24001  \x03"
                                          "4~\r\n");
    start({"--dry-run", script("VMAILHIS\r\n" + checkIn + checkIn + ";\r\n"), "--mode", "VMAIL",
           "--line-speed", "9600", "--at", "1", "<STX>4  40010201<ETX><BCC>"});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(outLines().filter("MESSAGE WAITING STATUS: ").join("|"),
              "MESSAGE WAITING STATUS:   4001NEW: 02 URGENT: 01")
        << out.toStdString();
}

TEST_F(FieldLink, ADryRunRehearsesTheSameLines) {
    const struct {
        const char* name;
        QStringList pacing;
    } cases[] = {
        {"1200 baud", {"--line-speed", "1200"}},
        {"pieces of 3 bytes", {"--split", "3"}},
        {"a USB adapter at 9600 baud",
         {"--line-speed", "9600", "--split", "15", "--split-gap", "0.016"}},
    };
    for (const auto& c : cases) {
        out.clear();
        err.clear();
        start(QStringList{"--dry-run", script(checkInAndWait)} + c.pacing + answersWithStatus);
        EXPECT_EQ(finish(), 0) << c.name << "\n" << err.toStdString();
        EXPECT_EQ(outLines().filter("Received--> STS1").join("|"), "Received--> STS1   101")
            << c.name << "\n"
            << out.toStdString();
        EXPECT_TRUE(outLines().contains("successfully received --> sts1")) << c.name;
    }
}

} // namespace
