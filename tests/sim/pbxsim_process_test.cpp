#include "common/pbxsim_process.h"

#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace larkspur::test;

namespace {

TEST(PbxSimProcess, PlaysThePbxOverTcpAndFromStandardInput) {
    QTemporaryDir dir;
    const QString traceFile = dir.filePath("trace.log");
    PbxSimProcess sim({"--trace", traceFile});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();

    QTcpSocket console;
    QByteArray received;
    QObject::connect(&console, &QTcpSocket::readyRead, [&] { received += console.readAll(); });
    console.connectToHost(QHostAddress::LocalHost, sim.port());
    console.write("\x05");
    ASSERT_TRUE(waitUntil([&] { return received == "\x06"; })) << received.toHex().data();
    sim.writeLine("<ENQ>");
    sim.writeLine("<BAD>");
    sim.writeLine("RQINZ     ");
    ASSERT_TRUE(waitUntil([&] { return received.size() >= 1 + 1 + 12; }));
    EXPECT_EQ(received, "\x06\x05\x02RQINZ     \x03");
    // Standard error is a pipe of its own: the complaint may come after the bytes.
    EXPECT_TRUE(waitUntil([&] { return !sim.standardError().isEmpty(); }));
    EXPECT_TRUE(sim.standardError().startsWith("larkspur-pbxsim: "))
        << sim.diagnostics().toStdString();

    console.disconnectFromHost();
    ASSERT_TRUE(waitUntil([&] { return sim.statusLines().contains("# disconnected"); }));
    EXPECT_EQ(sim.traceLines(),
              QStringList({"RX <ENQ>", "TX <ACK>", "TX <ENQ>", "TX <STX>RQINZ     <ETX>"}));
    EXPECT_EQ(sim.stop(), 0);

    QFile file(traceFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    PbxSimOutput written;
    written.feed(file.readAll());
    EXPECT_EQ(written.traceLines(), sim.traceLines());
    EXPECT_EQ(written.statusLines(), sim.statusLines());
    EXPECT_TRUE(written.strayLines().isEmpty());
}

TEST(PbxSimProcess, PlaysThePbxOverAPseudoTerminal) {
    QTemporaryDir dir;
    const QString link = dir.filePath("pbx");
    PbxSimProcess sim({"--pty", link});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    EXPECT_TRUE(sim.ptyPath().startsWith("/dev/pts/")) << sim.ptyPath().toStdString();
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), sim.ptyPath());

    // Twice: a console that closes the port and opens it again finds the simulator still there.
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        QSerialPort port(link);
        ASSERT_TRUE(port.open(QIODevice::ReadWrite)) << port.errorString().toStdString();
        QByteArray received;
        QObject::connect(&port, &QSerialPort::readyRead, [&] { received += port.readAll(); });
        port.write("\x05");
        ASSERT_TRUE(waitUntil([&] { return !received.isEmpty(); }));
        EXPECT_EQ(received, "\x06");
    }
    ASSERT_TRUE(sim.waitForTraceLines(4));
    EXPECT_EQ(sim.traceLines(), QStringList({"RX <ENQ>", "TX <ACK>", "RX <ENQ>", "TX <ACK>"}));

    EXPECT_EQ(sim.stop(), 0);
    EXPECT_FALSE(QFileInfo(link).isSymLink()) << "the link goes with the simulator";
}

TEST(PbxSimProcess, ExitsWithAStatusThatSaysWhatWentWrong) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost, 0));
    const QString takenPort = "127.0.0.1:" + QString::number(taken.serverPort());
    struct Case {
        QStringList arguments;
        int exitCode;
        QString output;
        QStringList errors;
    } cases[] = {
        {{"--help"}, 0, "usage: larkspur-pbxsim", {}},
        {{"--bogus"}, 64, "", {"larkspur-pbxsim: unknown option --bogus", "usage:"}},
        {{"--listen", takenPort}, 1, "", {"cannot listen on " + takenPort}},
        {{"--trace", "/nonexistent/dir/trace.log"}, 1, "", {"cannot write"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        TestProcess process;
        process.start(PbxSimProcess::program(), c.arguments);
        ASSERT_TRUE(process.waitForFinished(10000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), c.exitCode);
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        const QString err = QString::fromUtf8(process.readAllStandardError());
        if (c.output.isEmpty())
            EXPECT_TRUE(out.isEmpty()) << out.toStdString();
        else
            EXPECT_TRUE(out.startsWith(c.output)) << out.toStdString();
        for (const QString& expected : c.errors)
            EXPECT_TRUE(err.contains(expected)) << err.toStdString();
        if (c.errors.isEmpty()) {
            EXPECT_TRUE(err.isEmpty()) << err.toStdString();
        }
    }
}

} // namespace

// A console that sends two units in one write and is gone before the answers leave.
TEST(PbxSimProcess, SurvivesAConsoleThatHangsUpMidReply) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    for (const QByteArray& burst :
         {QByteArray("\x05\x05"), QByteArray("\x02STS 101\x03\x05"), QByteArray("\x05\x02X\x03")}) {
        QTcpSocket hostile;
        hostile.connectToHost(QHostAddress::LocalHost, sim.port());
        ASSERT_TRUE(hostile.waitForConnected(5000));
        hostile.write(burst);
        hostile.flush();
        hostile.abort();
    }
    // Still there, and serving the next console.
    QTcpSocket console;
    QByteArray received;
    QObject::connect(&console, &QTcpSocket::readyRead, [&] { received += console.readAll(); });
    console.connectToHost(QHostAddress::LocalHost, sim.port());
    console.write("\x05");
    ASSERT_TRUE(waitUntil([&] { return received == "\x06"; }, 10000))
        << sim.diagnostics().toStdString() << sim.traceLines().join('\n').toStdString()
        << received.toHex().toStdString();
    EXPECT_EQ(sim.stop(), 0) << sim.diagnostics().toStdString();
}

// A console that floods ENQs and never reads the answers is dropped, not served forever.
TEST(PbxSimProcess, DropsAConsoleThatNeverReads) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    ASSERT_GE(fd, 0);
    const int small = 4096;
    ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(sim.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    const QByteArray enqs(64 * 1024, '\x05');
    bool refused = false;
    const bool dropped = waitUntil(
        [&] {
            if (!refused && ::send(fd, enqs.constData(), size_t(enqs.size()), MSG_NOSIGNAL) < 0 &&
                errno != EAGAIN && errno != EWOULDBLOCK && errno != EINPROGRESS)
                refused = true;
            return !sim.statusLines().filter("# dropped").isEmpty();
        },
        30000);
    ::close(fd);
    EXPECT_TRUE(dropped) << sim.diagnostics().toStdString();
    EXPECT_TRUE(sim.statusLines().filter("does not read").size() == 1)
        << sim.diagnostics().toStdString();

    QTcpSocket console;
    QByteArray received;
    QObject::connect(&console, &QTcpSocket::readyRead, [&] { received += console.readAll(); });
    console.connectToHost(QHostAddress::LocalHost, sim.port());
    console.write("\x05");
    EXPECT_TRUE(waitUntil([&] { return received.endsWith("\x06"); }, 10000));
    EXPECT_EQ(sim.stop(), 0);
}
