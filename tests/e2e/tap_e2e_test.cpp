// larkspur-tap as a process between larkspur-run and larkspur-pbxsim, and between sockets the
// test plays by hand, over loopback TCP: the learned script's round trip, the bytes both ways,
// the trace and the statistics, hang-ups, floods and a trace nobody reads.
#include "common/qt_printers.h"
#include "common/stream_peer.h"
#include "learned_replay.h"
#include "protocol/readable_notation.h"
#include "tap_process.h"

#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTcpServer>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

// A script line and the same line as the learned script holds it: everything but comments.
QByteArray withoutComments(const QByteArray& script) {
    QByteArray kept;
    for (const QByteArray& line : script.split('\n'))
        if (!line.isEmpty() && !line.startsWith(';'))
            kept += line + '\n';
    return kept;
}

// A check-in and a move of a mailbox, each frame with its check character.
const QByteArray hyattScript = "VMAILHYATT\r\n"
                               "\x02"
                               "24001        \x03"
                               "4~\r\n"
                               "\x02"
                               "74001  4002  \x03"
                               "7~\r\n"
                               "; the last line never plays\r\n";

// "type" -> "sent/acked/refused/timeout" of a statistics table.
QMap<QString, QString> statisticsRows(const QStringList& lines) {
    static const QRegularExpression row(
        QStringLiteral("^(.{36}) +(\\d+) +(\\d+) +(\\d+) +(\\d+)  \\S+$"));
    QMap<QString, QString> rows;
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = row.match(line);
        if (match.hasMatch())
            rows.insert(match.captured(1).trimmed(),
                        QStringLiteral("%1/%2/%3/%4")
                            .arg(match.captured(2), match.captured(3), match.captured(4),
                                 match.captured(5)));
    }
    return rows;
}

// Finds a line of the tap's trace matching each pattern, in the order given.
void expectInOrder(const TapProcess& tap, const QStringList& patterns) {
    const QStringList lines = tap.lines();
    qsizetype at = 0;
    for (const QString& pattern : patterns) {
        const QRegularExpression line(pattern);
        while (at < lines.size() && !line.match(lines.at(at)).hasMatch())
            ++at;
        if (at == lines.size()) {
            ADD_FAILURE() << "no line, in order, matches " << pattern.toStdString() << "\n"
                          << tap.diagnostics();
            return;
        }
        ++at;
    }
}

class TapEndToEnd : public LearnedReplay {
protected:
    const QString learnedPath = home.filePath("learned.txt");
    QByteArray pbxHeard; // what the PBX heard from the PMS through the tap

    // Plays `script` with larkspur-run through the tap (TCP relay, --once) to the simulator,
    // and checks what the tap learned (`commands` lines, then its closing line), relayed,
    // traced and counted.
    void roundTrip(const QStringList& simArguments, const QStringList& tapArguments,
                   const QByteArray& script, const QByteArray& learned, int commands) {
        PbxSimProcess sim(simArguments);
        ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
        TapProcess tap(QStringList{"--listen", "127.0.0.1:0", "--pbx", tcp(sim), "--learn",
                                   learnedPath, "--once"} +
                       tapArguments);
        ASSERT_TRUE(tap.start()) << tap.diagnostics();
        const QString runTrace = home.filePath("run-trace.txt");
        start({"--tcp", QStringLiteral("127.0.0.1:%1").arg(tap.port()), "--trace", runTrace,
               this->script(script)});
        EXPECT_EQ(finish(), 0) << err.toStdString();
        EXPECT_EQ(tap.waitForExit(), 0) << tap.diagnostics();

        EXPECT_EQ(learnedLines(learnedPath, commands), learned);

        // What one side sent is what the other got, byte for byte, both ways.
        QFile trace(runTrace);
        ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
        const QStringList runRows = QString::fromLatin1(trace.readAll()).split(u'\n');
        sim.stop();
        const QByteArray pmsSent = bytesOf(runRows, "TX");
        const QByteArray pbxSent = bytesOf(sim.traceLines(), "TX");
        pbxHeard = bytesOf(sim.traceLines(), "RX");
        EXPECT_FALSE(pmsSent.isEmpty());
        EXPECT_FALSE(pbxSent.isEmpty());
        EXPECT_TRUE(pbxHeard == pmsSent);
        EXPECT_TRUE(bytesOf(runRows, "RX") == pbxSent);

        // The tap's statistics agree with larkspur-run's on everything the PMS sent.
        const QMap<QString, QString> tapRows = statisticsRows(tap.lines());
        const QMap<QString, QString> runRowsCounted = statisticsRows(errLines());
        ASSERT_FALSE(runRowsCounted.isEmpty()) << err.toStdString();
        for (auto it = runRowsCounted.cbegin(); it != runRowsCounted.cend(); ++it) {
            if (!it.key().startsWith(u"wait ")) {
                EXPECT_EQ(tapRows.value(it.key()), it.value()) << it.key().toStdString();
            }
        }
        EXPECT_TRUE(tap.lines().contains("the tap stopped") ||
                    tap.waitForLine(QStringLiteral("the PMS hung up")))
            << tap.diagnostics();
    }
};

TEST_F(TapEndToEnd, AHotelScriptComesBackLineForLineWithWaitsThatMeetThemAgain) {
    // Transactions of each shape; the status comes in pieces, as a serial-to-TCP converter
    // delivers it.
    const QByteArray script = "CHK1   101\r\n"
                              "WAIT STS2   101 3\r\n"
                              "STE0   101   102   103\r\n"
                              "CHK0   101\r\n"
                              "WAIT MR 0001  101 2\r\n"
                              "; the last line never plays\r\n";
    const QStringList pbx = {"--after", "CHK1", "2.5",         "STS2   101",
                             "--after", "CHK0", "1.5",         "MR 0001  101",
                             "--split", "3",    "--split-gap", "0.02"};
    roundTrip(pbx, {"--learn-waits"}, script, withoutComments(script), 5);
    EXPECT_TRUE(outLines().contains("successfully received --> sts2"));
    EXPECT_TRUE(outLines().contains("successfully received --> mr"));

    // Played back, the learned script says to the PBX what the PMS said, the check-out too,
    // and meets the waits again.
    EXPECT_TRUE(heardReplaying(learnedPath, pbx, false) == pbxHeard);
    EXPECT_TRUE(outLines().contains("Sending   -->CHK0   101")) << out.toStdString();
    EXPECT_TRUE(outLines().contains("successfully received --> mr")) << out.toStdString();
}

TEST_F(TapEndToEnd, AVoiceMailScriptComesBackInTheHyattProtocolAndReplaysWhole) {
    roundTrip({"--mode", "VMAIL"}, {"--mode", "VMAIL", "--protocol", "HYATT"}, hyattScript,
              withoutComments(hyattScript), 2);
    EXPECT_TRUE(heardReplaying(learnedPath, {"--mode", "VMAIL"}, false) == pbxHeard);
}

TEST_F(TapEndToEnd, AScriptLearnedByATapKilledMidSessionReplaysAllItLearned) {
    // The run is still waiting, its session open, when the tap is killed.
    const QByteArray script = "CHK1   101\r\n"
                              "NAM1 Smith                  101\r\n"
                              "CHK0   101\r\n"
                              "WAIT STS1   101 9\r\n"
                              ";\r\n";
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    TapProcess tap({"--listen", "127.0.0.1:0", "--pbx", tcp(sim), "--learn", learnedPath});
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    start({"--tcp", QStringLiteral("127.0.0.1:%1").arg(tap.port()), this->script(script)});
    ASSERT_TRUE(waitUntil([&] { return contents(learnedPath).contains("CHK0   101"); }, 30'000))
        << tap.diagnostics();
    EXPECT_EQ(tap.stop(SIGKILL), -1);
    EXPECT_EQ(finish(), 4) << "the link went with the tap";
    sim.stop();
    const QByteArray heard = bytesOf(sim.traceLines(), "RX");

    EXPECT_EQ(learnedLines(learnedPath, 3), "CHK1   101\r\n"
                                            "NAM1 Smith                  101\r\n"
                                            "CHK0   101\r\n");
    EXPECT_TRUE(heardReplaying(learnedPath, {}, false) == heard);
    EXPECT_TRUE(outLines().contains("Sending   -->CHK0   101")) << out.toStdString();
}

TEST_F(TapEndToEnd, TheTraceShowsRefusalsAndRetries) {
    PbxSimProcess sim({"--on-frame", "nak,ack"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    TapProcess tap({"--listen", "127.0.0.1:0", "--pbx", tcp(sim), "--once"});
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    start({"--tcp", QStringLiteral("127.0.0.1:%1").arg(tap.port()), script("CHK0   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_EQ(tap.waitForExit(), 0) << tap.diagnostics();
    expectInOrder(tap,
                  {
                      "^-- listening for the PMS on 127\\.0\\.0\\.1:\\d+; the PBX is at "
                      "127\\.0\\.0\\.1:\\d+$",
                      "^-- PMS 127\\.0\\.0\\.1:\\d+ connected; connecting to the PBX at ",
                      "^-- the PBX at 127\\.0\\.0\\.1:\\d+ accepted; relaying$",
                      "^PMS>PBX <ENQ>   ; ENQ bid$",
                      "^PBX>PMS <ACK>   ; ACK to the ENQ bid after \\d+ ms$",
                      "^PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101$",
                      "^PBX>PMS <NAK>   ; NAK to check-out room 101 after \\d+ ms$",
                      "^PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101, retry 2$",
                      "^PBX>PMS <ACK>   ; ACK to check-out room 101 after \\d+ ms$",
                      "^-- the PMS hung up \\(127\\.0\\.0\\.1:\\d+: the connection was closed\\)$",
                      "^-- statistics:$",
                      "^ENQ +2 +2 +0 +0  \\d+/\\d+/\\d+$",
                      "^check-out +2 +1 +1 +0  \\d+/\\d+/\\d+$",
                  });
}

class TapHandPlayed : public ::testing::Test {
protected:
    LoopbackListener pbx; // the PBX end: takes each connection the tap makes
    QTemporaryDir dir;

    // `output`: where its standard output goes, when not to the test.
    std::unique_ptr<TapProcess> startTap(const QStringList& more = {},
                                         const QString& output = QString()) {
        auto tap = std::make_unique<TapProcess>(
            QStringList{"--listen", "127.0.0.1:0", "--pbx", pbx.address()} + more);
        if (!output.isEmpty())
            tap->sendOutputTo(output);
        EXPECT_TRUE(tap->start()) << tap->diagnostics();
        return tap;
    }
    // A PMS connected through the tap, once the tap has reached the PBX.
    std::unique_ptr<StreamPeer> connectPms(TapProcess& tap, size_t sessions) {
        auto pms = connectToLoopback(tap.port());
        EXPECT_TRUE(waitUntil([&] { return pbx.peers.size() >= sessions; })) << tap.diagnostics();
        return pms;
    }
    // Sends and hangs up once the bytes are on their way.
    static void sendAndHangUp(StreamPeer& peer, const QByteArray& bytes) {
        peer.send(bytes);
        waitUntil([&] { return peer.sentAll(); });
        peer.close();
    }
};

TEST_F(TapHandPlayed, EitherSideHangingUpEndsTheSessionAndTheTapWaitsForTheNext) {
    for (const bool pmsHangsUp : {true, false}) {
        auto tap = startTap();
        auto pms = connectPms(*tap, pbx.peers.size() + 1);
        StreamPeer& pbxEnd = pbx.last();
        pms->send("\x05");
        ASSERT_TRUE(waitUntil([&] { return pbxEnd.received == "\x05"; }));
        pbxEnd.send("\x06");
        ASSERT_TRUE(waitUntil([&] { return pms->received == "\x06"; }));
        if (pmsHangsUp) {
            sendAndHangUp(*pms, "\x02"
                                "CHK1   101\x03");
            ASSERT_TRUE(waitUntil([&] { return pbxEnd.hungUp; })) << tap->diagnostics();
            EXPECT_EQ(pbxEnd.received, "\x05\x02"
                                       "CHK1   101\x03");
        } else {
            sendAndHangUp(pbxEnd, "\x02"
                                  "STS2   101\x03");
            ASSERT_TRUE(waitUntil([&] { return pms->hungUp; })) << tap->diagnostics();
            EXPECT_EQ(pms->received, "\x06\x02"
                                     "STS2   101\x03");
        }
        ASSERT_TRUE(tap->waitForLine("waiting for the next PMS")) << tap->diagnostics();
        const QString who = pmsHangsUp ? "PMS" : "PBX";
        EXPECT_TRUE(
            tap->lines()
                .filter(QRegularExpression("^-- the " + who +
                                           " hung up \\(127\\.0\\.0\\.1:\\d+: the connection was "
                                           "closed\\)$"))
                .size() == 1)
            << tap->diagnostics();
        // The next PMS starts a session of its own.
        auto next = connectPms(*tap, pbx.peers.size() + 1);
        next->send("\x05");
        ASSERT_TRUE(waitUntil([&] { return pbx.last().received == "\x05"; }));
        EXPECT_EQ(tap->stop(SIGTERM), 130) << tap->diagnostics();
        EXPECT_TRUE(tap->lines().contains("-- statistics:")) << tap->diagnostics();
        EXPECT_TRUE(tap->lines().filter(QRegularExpression("^ENQ +2 +1 +0 +1  ")).size() == 1)
            << tap->diagnostics();
    }
}

TEST_F(TapHandPlayed, EachEndingSignalGivesTheStatisticsAndItsStatus) {
    const struct {
        int signal;
        int status;
    } cases[] = {{SIGINT, 130}, {SIGTERM, 130}, {SIGHUP, 129}};
    for (const auto& c : cases) {
        auto tap = startTap();
        auto pms = connectPms(*tap, pbx.peers.size() + 1);
        pms->send("\x05");
        ASSERT_TRUE(waitUntil([&] { return pbx.last().received == "\x05"; }));
        pbx.last().send("\x06");
        ASSERT_TRUE(waitUntil([&] { return pms->received == "\x06"; }));
        EXPECT_EQ(tap->stop(c.signal), c.status) << c.signal;
        EXPECT_TRUE(tap->lines().contains("-- the tap stopped")) << tap->diagnostics();
        EXPECT_TRUE(tap->lines().filter(QRegularExpression("^ENQ +1 +1 +0 +0  ")).size() == 1)
            << tap->diagnostics();
        EXPECT_TRUE(waitUntil([&] { return pms->hungUp && pbx.last().hungUp; }));
    }
}

TEST_F(TapHandPlayed, APbxThatCannotBeReachedTurnsThePmsAwayAndASecondPmsWaitsItsTurn) {
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost, 0);
    const quint16 nobody = closed.serverPort();
    closed.close();
    TapProcess tap(
        {"--listen", "127.0.0.1:0", "--pbx", QStringLiteral("127.0.0.1:%1").arg(nobody)});
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    auto pms = connectToLoopback(tap.port());
    ASSERT_TRUE(waitUntil([&] { return pms->hungUp; })) << tap.diagnostics();
    EXPECT_TRUE(tap.waitForLine(QStringLiteral("cannot be reached (Connection refused); the PMS "
                                               "was closed")))
        << tap.diagnostics();

    auto relay = startTap();
    auto first = connectPms(*relay, pbx.peers.size() + 1);
    auto second = connectToLoopback(relay->port());
    ASSERT_TRUE(waitUntil([&] { return second->hungUp; })) << relay->diagnostics();
    EXPECT_TRUE(relay->waitForLine("was turned away: one PMS at a time"));
    first->send("\x05");
    ASSERT_TRUE(waitUntil([&] { return pbx.last().received == "\x05"; }));
}

TEST_F(TapHandPlayed, GarbageAndFloodsCrossUnchangedAndEveryByteIsTraced) {
    // Traced into a file, which keeps up with anything the test could read.
    auto tap = startTap({"--trace", dir.filePath("trace.txt")}, "/dev/null");
    ASSERT_FALSE(HasFailure());
    auto pms = connectPms(*tap, 1);
    StreamPeer& pbxEnd = pbx.last();
    QRandomGenerator random(7);
    QByteArray flood[2];
    for (QByteArray& bytes : flood) {
        bytes.resize(32 * 1024);
        for (char& byte : bytes) {
            const char pick[] = {2, 3, 5, 6, 21, 'S', '1', ' '};
            byte = random.bounded(3) == 0 ? char(random.bounded(256)) : pick[random.bounded(8)];
            if (byte == ';')
                byte = ':'; // so the first "   ; " of a trace line ends its notation
        }
    }
    pms->send(flood[0]);
    pbxEnd.send(flood[1]);
    ASSERT_TRUE(waitUntil(
        [&] {
            return pbxEnd.received.size() >= flood[0].size() &&
                   pms->received.size() >= flood[1].size();
        },
        60000))
        << pbxEnd.received.size() << " " << pms->received.size();
    EXPECT_TRUE(pbxEnd.received == flood[0]);
    EXPECT_TRUE(pms->received == flood[1]);

    // What waits to be traced is traced before the tap ends, which takes its time under the
    // sanitizers.
    EXPECT_EQ(tap->stop(SIGTERM, 120'000), 130);
    QByteArray traced[2];
    qint64 untraced[2] = {0, 0};
    static const QRegularExpression notTraced("^-- not traced: (\\d+) bytes PMS>PBX and (\\d+)");
    for (const QString& line : tap->lines()) {
        if (const auto match = notTraced.match(line); match.hasMatch()) {
            untraced[0] = match.captured(1).toLongLong();
            untraced[1] = match.captured(2).toLongLong();
        }
        const int side = line.startsWith(u"PMS>PBX ") ? 0 : line.startsWith(u"PBX>PMS ") ? 1 : -1;
        if (side >= 0)
            traced[side] += parseReadable(line.mid(8, line.indexOf("   ; ") - 8), nullptr);
    }
    for (int side = 0; side < 2; ++side)
        EXPECT_EQ(traced[side].size() + untraced[side], flood[side].size()) << side;
    // Whatever was traced is the flood itself, in order, when none of it was left out.
    for (int side = 0; side < 2; ++side) {
        if (untraced[side] == 0) {
            EXPECT_TRUE(traced[side] == flood[side]) << side;
        }
    }
}

TEST_F(TapHandPlayed, AReaderOfTheTraceThatStopsNeverHoldsTheRelayUp) {
    // Standard output into a FIFO that the test holds open and never reads.
    const QString fifo = dir.filePath("stuck");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const int holder = ::open(QFile::encodeName(fifo).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(holder, 0);
    const QString traceFile = dir.filePath("trace.txt");
    TapProcess tap({"--listen", "127.0.0.1:0", "--pbx", pbx.address(), "--trace", traceFile});
    tap.sendOutputTo(fifo);
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    const quint16 port = tap.port();
    auto pms = connectToLoopback(port);
    ASSERT_TRUE(waitUntil([&] { return pbx.peers.size() == 1; }));
    // Thousands of bids and answers: far more trace than the FIFO holds.
    for (int round = 0; round < 1'000; ++round) {
        pms->send("\x05");
        pbx.last().send("\x06");
    }
    ASSERT_TRUE(waitUntil(
        [&] { return pbx.last().received.size() == 1'000 && pms->received.size() == 1'000; },
        30000));
    // At the end it traces what it relayed faster than the trace could follow, which takes
    // seconds under the sanitizers.
    EXPECT_EQ(tap.stop(SIGTERM, 60'000), 130);
    EXPECT_TRUE(tap.standardError().contains("trace lines could not be written to standard output"))
        << tap.standardError().toStdString();
    // The trace file kept up and has it all.
    const QString whole = tap.lines().join(u'\n');
    EXPECT_EQ(whole.count(QStringLiteral("PMS>PBX <ENQ>")), 1'000);
    EXPECT_EQ(whole.count(QStringLiteral("PBX>PMS <ACK>")), 1'000);
    EXPECT_TRUE(whole.contains(QRegularExpression("\nENQ +1000 ")));
    ::close(holder);
}

TEST_F(TapHandPlayed, AScriptOrTraceThatCannotBeWrittenWholeEndsWithStatusFive) {
    const struct {
        QStringList arguments;
        const char* says;
    } cases[] = {
        {{"--learn", "/dev/full"},
         "larkspur-tap: cannot write the script /dev/full: No space left on device\n"},
        {{"--trace", "/dev/full"}, "larkspur-tap: the trace /dev/full is not whole: "},
    };
    for (const auto& c : cases) {
        auto tap = startTap(c.arguments + QStringList{"--once"});
        auto pms = connectPms(*tap, pbx.peers.size() + 1);
        StreamPeer& pbxEnd = pbx.last();
        pms->send("\x02"
                  "CHK1   101\x03");
        ASSERT_TRUE(waitUntil([&] { return pbxEnd.received.size() == 12; }));
        pbxEnd.send("\x06");
        ASSERT_TRUE(waitUntil([&] { return pms->received == "\x06"; }));
        // The relay went on all the same.
        pms->close();
        EXPECT_EQ(tap->waitForExit(), 5) << tap->diagnostics();
        EXPECT_TRUE(tap->standardError().contains(c.says)) << tap->diagnostics();
    }
}

TEST(TapCommandLine, BadArgumentsAreRefusedWithAUsageLine) {
    TestProcess process;
    process.start(TapProcess::program(), {"--listen", "127.0.0.1:0"});
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitCode(), 64);
    EXPECT_TRUE(process.readAllStandardError().startsWith(
        "larkspur-tap: a TCP relay needs --listen and --pbx\nusage: larkspur-tap "));
    process.start(TapProcess::program(), {"--help"});
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(process.readAllStandardOutput().startsWith("usage: larkspur-tap "));
}

TEST(TapCommandLine, APortInUseIsNoLink) {
    QTcpServer taken;
    taken.listen(QHostAddress::LocalHost, 0);
    TestProcess tap;
    tap.start(TapProcess::program(),
              {"--listen", QStringLiteral("127.0.0.1:%1").arg(taken.serverPort()), "--pbx",
               "127.0.0.1:1"});
    ASSERT_TRUE(tap.waitForFinished(10000));
    EXPECT_EQ(tap.exitCode(), 2);
    EXPECT_TRUE(tap.readAllStandardError().startsWith("larkspur-tap: cannot listen on 127.0.0.1:"));
}

} // namespace
