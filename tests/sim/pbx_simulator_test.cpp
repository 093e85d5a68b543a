#include "common/pbxsim_process.h"
#include "protocol/readable_notation.h"
#include "sim/pbx_simulator.h"
#include "sim/tracer.h"

#include <QBuffer>
#include <QTcpSocket>
#include <gtest/gtest.h>

#include <memory>

using namespace larkspur;
using namespace larkspur::sim;
using larkspur::test::PbxSimOutput;
using larkspur::test::waitUntil;

namespace {

// The simulator in this process on an ephemeral loopback port, its output kept in memory.
struct Simulator {
    QBuffer out;
    Tracer tracer;
    std::unique_ptr<PbxSimulator> engine;

    explicit Simulator(const QStringList& arguments) {
        const ParsedArguments parsed =
            parseSimArguments(QStringList{"--listen", "127.0.0.1:0"} + arguments);
        EXPECT_TRUE(parsed.options) << parsed.error.toStdString();
        out.open(QIODevice::WriteOnly);
        tracer.addSink(&out);
        engine = std::make_unique<PbxSimulator>(parsed.options.value_or(SimOptions{}), tracer);
        EXPECT_TRUE(engine->start(nullptr));
    }
    ~Simulator() { EXPECT_EQ(output().strayLines(), QStringList()); }

    PbxSimOutput output() const {
        PbxSimOutput parsed;
        parsed.feed(out.data());
        return parsed;
    }
    QStringList trace() const { return output().traceLines(); }
    QStringList status() const { return output().statusLines(); }
    bool waitForTrace(qsizetype count) {
        return waitUntil([&] { return trace().size() >= count; });
    }
};

// The console's side of a loopback connection.
struct Console {
    QTcpSocket socket;
    QByteArray received;

    Console() {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket,
                         [this] { received += socket.readAll(); });
    }
    bool isConnected() const { return socket.state() == QAbstractSocket::ConnectedState; }

    // Connects and waits until the simulator has taken the connection up.
    bool connectTo(Simulator& s) {
        socket.connectToHost(QHostAddress::LocalHost, s.engine->tcpPort());
        return waitUntil([&] {
            return isConnected() && s.status().contains("# connected tcp 127.0.0.1:" +
                                                        QString::number(socket.localPort()));
        });
    }
    void send(const QString& readable) {
        socket.write(parseReadable(readable, nullptr));
        socket.flush();
    }
    bool waitForBytes(qsizetype count) {
        return waitUntil([&] { return received.size() >= count; });
    }
};

// The bytes of the TX lines of a trace, in order.
QByteArray sentIn(const QStringList& trace) {
    QByteArray bytes;
    for (const QString& line : trace) {
        if (line.startsWith("TX "))
            bytes += parseReadable(line.mid(3), nullptr);
    }
    return bytes;
}

// When each answer leaves, and which, is the session's test in virtual time.
TEST(PbxSimulator, AnswersAsToldInEitherMode) {
    struct Case {
        QStringList arguments;
        QString input; // sent in one write
        QStringList trace;
        QStringList bcc = {};
    } cases[] = {
        {{}, "<ENQ>", {"RX <ENQ>", "TX <ACK>"}},
        {{}, "<STX>STS 101<ETX>", {"RX <STX>STS 101<ETX>", "TX <ACK>"}},
        {{"--on-frame", "silent", "--on-enq", "nak"},
         "<STX>A<ETX><ENQ>",
         {"RX <STX>A<ETX><ENQ>", "TX <NAK>"}},
        // Each unit of a read gets its own answer, each in its own write.
        {{}, "<ENQ><STX>A<ETX>", {"RX <ENQ><STX>A<ETX>", "TX <ACK>", "TX <ACK>"}},
        // The console's own answers are only traced.
        {{}, "<ACK><NAK>", {"RX <ACK><NAK>"}},
        // A hotel frame has no check character: what follows is not part of it.
        {{}, "<STX>1<ETX>2", {"RX <STX>1<ETX>2", "TX <ACK>"}},
        {{"--mode", "VMAIL"}, "<STX>1<ETX>2", {"RX <STX>1<ETX>2", "TX <ACK>"}, {"# BCC ok"}},
        {{"--mode", "VMAIL"},
         "<STX>1<ETX>X",
         {"RX <STX>1<ETX>X", "TX <ACK>"},
         {"# BCC wrong: got X, expected 2"}},
        // A check character that happens to be ENQ is not a second question.
        {{"--mode", "VMAIL"},
         "<STX>\\x06<ETX><BCC>",
         {"RX <STX><ACK><ETX><ENQ>", "TX <ACK>"},
         {"# BCC ok"}},
        {{"--mode", "VMAIL"}, "<STX>1<ETX>", {"RX <STX>1<ETX>"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE((c.arguments.join(' ') + " <- " + c.input).toStdString());
        Simulator sim(c.arguments);
        Console console;
        ASSERT_TRUE(console.connectTo(sim));
        console.send(c.input);
        // Answers are written while the read is handled, so the trace is complete once the RX
        // line is there.
        ASSERT_TRUE(sim.waitForTrace(1));
        EXPECT_EQ(sim.trace(), c.trace);
        EXPECT_EQ(sim.status().filter("# BCC"), c.bcc);
        const QByteArray answers = sentIn(c.trace);
        ASSERT_TRUE(console.waitForBytes(answers.size()));
        EXPECT_EQ(console.received, answers);
    }
}

TEST(PbxSimulator, FollowsUpFramesThatStartWithTheMatch) {
    Simulator sim({"--after", "STS", "0", "MW 101 1", "--after", "ST", "0.05", "<ENQ>", "--after",
                   "RQ", "0", "never"});
    Console console;
    ASSERT_TRUE(console.connectTo(sim));
    console.send("<STX>CHK1<ETX>");
    ASSERT_TRUE(sim.waitForTrace(2));
    console.send("<STX>STS 101<ETX>");
    ASSERT_TRUE(sim.waitForTrace(6));
    EXPECT_EQ(sim.trace(), QStringList({"RX <STX>CHK1<ETX>", "TX <ACK>", "RX <STX>STS 101<ETX>",
                                        "TX <ACK>", "TX <STX>MW 101 1<ETX>", "TX <ENQ>"}));
    ASSERT_TRUE(console.waitForBytes(2 + 10 + 1));
    EXPECT_EQ(toReadable(console.received), "<ACK><ACK><STX>MW 101 1<ETX><ENQ>");
}

TEST(PbxSimulator, OffersEchoAndSendsTimedMessagesOnEveryConnect) {
    Simulator sim({"--echo-offer", "--at", "0.05", "RQINZ     ", "--at", "0", "<ENQ>"});
    const QString expected = "\\xFF\\xFB\\x01<ENQ><STX>RQINZ     <ETX>";
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        Console console;
        ASSERT_TRUE(console.connectTo(sim));
        ASSERT_TRUE(console.waitForBytes(3 + 1 + 12));
        EXPECT_EQ(toReadable(console.received), expected);
        console.socket.disconnectFromHost();
        ASSERT_TRUE(waitUntil([&] { return sim.status().count("# disconnected") == round + 1; }));
    }
    EXPECT_EQ(sim.trace(),
              QStringList({"TX \\xFF\\xFB\\x01", "TX <ENQ>", "TX <STX>RQINZ     <ETX>",
                           "TX \\xFF\\xFB\\x01", "TX <ENQ>", "TX <STX>RQINZ     <ETX>"}));
}

TEST(PbxSimulator, ServesOneConsoleAtATime) {
    Simulator sim({});
    Console first;
    ASSERT_TRUE(first.connectTo(sim));
    Console second;
    second.socket.connectToHost(QHostAddress::LocalHost, sim.engine->tcpPort());
    // Connected as far as the system goes, but waiting in the backlog for the first to leave.
    ASSERT_TRUE(waitUntil([&] { return second.isConnected(); }));
    second.send("<ENQ>");
    first.send("<ENQ>");
    ASSERT_TRUE(first.waitForBytes(1));
    const quint16 firstPort = first.socket.localPort();
    first.socket.disconnectFromHost();
    ASSERT_TRUE(second.waitForBytes(1));
    EXPECT_EQ(toReadable(second.received), "<ACK>");
    EXPECT_EQ(
        sim.status(),
        QStringList({"# listening 127.0.0.1:" + QString::number(sim.engine->tcpPort()),
                     "# connected tcp 127.0.0.1:" + QString::number(firstPort), "# disconnected",
                     "# connected tcp 127.0.0.1:" + QString::number(second.socket.localPort())}));
}

// What a typed line does with a console is the process's test.
TEST(PbxSimulator, ATypedLineWithoutAConsoleIsRefused) {
    Simulator sim({});
    QString error;
    EXPECT_FALSE(sim.engine->sendLine("RQINZ     ", &error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
