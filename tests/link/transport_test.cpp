// The real transports, on POSIX descriptors and on Qt's own classes, against a raw peer over
// loopback TCP and a pty pair: every byte both ways, in order, through full buffers; an answer
// that leaves from inside the receiver; a lost link; the tty's line settings.
#include "common/pbxsim_process.h"
#include "common/stream_peer.h"
#include "link/qt_serial_transport.h"
#include "link/qt_tcp_transport.h"
#ifndef LARKSPUR_PORTABLE
#include "link/serial_transport.h"
#include "link/tcp_transport.h"
#endif

#include <QSignalSpy>
#include <QSocketNotifier>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

void shrinkBuffer(int fd, int option) {
    const int size = 16384;
    ::setsockopt(fd, SOL_SOCKET, option, &size, sizeof size);
}

// One way of building the transports, and what it says when a pty's other end goes away.
struct Implementation {
    const char* name;
    std::unique_ptr<Transport> (*tcp)();
    std::unique_ptr<Transport> (*serial)();
    // Run once the TCP transport is connected.
    void (*connected)(Transport&);
    QString ptyLoss;
};

#ifndef LARKSPUR_PORTABLE
// The descriptor transport with its descriptor in reach, to shrink its send buffer: with it, a
// megabyte written at once mostly waits in the transport.
struct TestTcp : TcpTransport {
    using FdTransport::descriptor;
};
#endif

const Implementation implementations[] = {
#ifndef LARKSPUR_PORTABLE
    {"descriptor", [] { return std::unique_ptr<Transport>(new TestTcp); },
     [] { return std::unique_ptr<Transport>(new SerialTransport); },
     [](Transport& tcp) { shrinkBuffer(static_cast<TestTcp&>(tcp).descriptor(), SO_SNDBUF); },
     QStringLiteral("the device hung up")},
#endif
    // Qt's socket keeps what the kernel does not take in a buffer of its own.
    {"qt", [] { return std::unique_ptr<Transport>(new QtTcpTransport); },
     [] { return std::unique_ptr<Transport>(new QtSerialTransport); }, [](Transport&) {},
     QStringLiteral("the device hung up")},
};

// A connected pair: the transport under test and the raw peer, over TCP or a pty.
struct Pair {
    std::unique_ptr<Transport> transport;
    std::unique_ptr<StreamPeer> peer;
    QString lostReason; // what linkLost says when the peer goes away
};

Pair tcpPair(const Implementation& implementation, qsizetype readLimit = 65536) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Inherited by the accepted socket: the PBX takes the megabyte slowly.
    shrinkBuffer(listener, SO_RCVBUF);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(listener, reinterpret_cast<sockaddr*>(&address), length);
    ::listen(listener, 1);
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);

    std::unique_ptr<Transport> tcp = implementation.tcp();
    tcp->connectToHost(QStringLiteral("127.0.0.1"), ntohs(address.sin_port));
    waitUntil([&] { return tcp->isOpen(); });
    implementation.connected(*tcp);
    const int accepted = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    ::close(listener);
    return {std::move(tcp), std::make_unique<StreamPeer>(accepted, readLimit),
            QStringLiteral("closed by the PBX")};
}

struct PtyPair {
    int master = -1;
    int slave = -1; // kept open to read the line settings back
    QString path;
    PtyPair() {
        char name[256];
        ::openpty(&master, &slave, name, nullptr, nullptr);
        termios raw{};
        ::tcgetattr(master, &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(master, TCSANOW, &raw);
        path = QString::fromLocal8Bit(name);
    }
    ~PtyPair() {
        if (slave >= 0)
            ::close(slave);
    }
};

QString openSerial(Transport& serial, const QString& path, const QString& line,
                   bool nullDiscard = false, bool modemLines = false) {
    SerialOptions options;
    options.lineSettings = line;
    options.nullDiscard = nullDiscard;
    options.dtr = options.rts = modemLines;
    const QString error = serial.applySerialOptions(options);
    return error.isEmpty() ? serial.openPort(path) : error;
}

Pair ptyPair(const Implementation& implementation, bool nullDiscard = false) {
    PtyPair pty;
    std::unique_ptr<Transport> serial = implementation.serial();
    EXPECT_EQ(openSerial(*serial, pty.path, QStringLiteral("9600,N,8,1"), nullDiscard), "");
    return {std::move(serial), std::make_unique<StreamPeer>(pty.master), implementation.ptyLoss};
}

// Every implementation over both links; `name` says which.
struct Wire {
    std::string name;
    Pair (*make)(const Implementation&);
    const Implementation* implementation;
    Pair operator()() const { return make(*implementation); }
};
std::vector<Wire> everyWire() {
    std::vector<Wire> wires;
    for (const Implementation& i : implementations) {
        wires.push_back({i.name + std::string(" tcp"),
                         [](const Implementation& at) { return tcpPair(at, 512); }, &i});
        wires.push_back({i.name + std::string(" pty"),
                         [](const Implementation& at) { return ptyPair(at); }, &i});
    }
    return wires;
}

// What the transport hands on, one readAll per wake-up as the receiver does.
struct Received {
    QByteArray bytes;
    explicit Received(Transport& transport) {
        QObject::connect(&transport, &Transport::dataReceived,
                         [this, &transport] { bytes += transport.readAll(); });
    }
};

TEST(Transport, AMegabyteEachWayArrivesWholeAndInOrder) {
    for (const Wire& wire : everyWire()) {
        Pair pair = wire();
        ASSERT_TRUE(pair.transport->isOpen()) << wire.name;
        Received received(*pair.transport);
        const QByteArray out = pattern(megabyte, 1), in = pattern(megabyte, 2);
        pair.peer->send(in);
        // Writes of every size from 1 to 4000 bytes, most of them queued behind a full buffer.
        for (qsizetype at = 0, size = 1; at < out.size(); at += size, size = size % 4000 + 1)
            pair.transport->write(out.mid(at, size));
        ASSERT_TRUE(waitUntil(
            [&] {
                return pair.peer->received.size() >= megabyte && received.bytes.size() >= megabyte;
            },
            30000))
            << wire.name << ": " << pair.peer->received.size() << " out, " << received.bytes.size()
            << " in";
        EXPECT_TRUE(pair.peer->received == out) << wire.name;
        EXPECT_TRUE(received.bytes == in) << wire.name;
    }
}

// The ACK to an ENQ is written from inside the receiver and must be on the wire when the write
// returns, not after the next pass of the event loop: the receiver may block in a wait first.
TEST(Transport, AnAnswerWrittenFromTheReceiverLeavesAtOnce) {
    for (const Wire& wire : everyWire()) {
        Pair pair = wire();
        int answered = -1; // what poll saw right after the write
        QObject::connect(pair.transport.get(), &Transport::dataReceived, [&] {
            pair.transport->readAll();
            pair.transport->write("\x06");
            // Outside the event loop on purpose: only bytes already written can arrive. The
            // bound only covers the kernel handing them over.
            pollfd readable{pair.peer->fd(), POLLIN, 0};
            answered = ::poll(&readable, 1, 1000);
        });
        pair.peer->send("\x05");
        ASSERT_TRUE(waitUntil([&] { return answered >= 0; })) << wire.name;
        EXPECT_EQ(answered, 1) << wire.name;
        EXPECT_TRUE(waitUntil([&] { return pair.peer->received == "\x06"; })) << wire.name;
    }
}

TEST(Transport, ALostLinkIsReportedOnceAfterWhatCameBeforeIt) {
    for (const Implementation& implementation : implementations) {
        const struct {
            const char* name;
            Pair (*make)(const Implementation&);
            bool reset; // TCP only: the peer resets the connection instead of closing it
        } cases[] = {{"tcp closed", [](const Implementation& i) { return tcpPair(i); }, false},
                     {"tcp reset", [](const Implementation& i) { return tcpPair(i); }, true},
                     {"pty closed", [](const Implementation& i) { return ptyPair(i); }, false}};
        for (const auto& c : cases) {
            const std::string name = implementation.name + std::string(" ") + c.name;
            Pair pair = c.make(implementation);
            Received received(*pair.transport);
            QSignalSpy lost(pair.transport.get(), &Transport::linkLost);
            ASSERT_EQ(::write(pair.peer->fd(), "last words", 10), 10);
            ASSERT_TRUE(waitUntil([&] { return received.bytes == "last words"; })) << name;
            if (c.reset) {
                const linger abort{1, 0};
                ::setsockopt(pair.peer->fd(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
            }
            pair.peer->close();
            ASSERT_TRUE(waitUntil([&] { return lost.count() > 0; })) << name;
            pair.transport->write("into the void");
            waitUntil([] { return false; }, 100);
            EXPECT_EQ(lost.count(), 1) << name;
            EXPECT_EQ(lost.at(0).at(0).toString(), pair.lostReason) << name;
            EXPECT_FALSE(pair.transport->isOpen()) << name;
        }
    }
}

#ifndef LARKSPUR_PORTABLE
TEST(FdTransport, APausedReaderLeavesBytesWaitingAndDrainedSaysWhenAllLeft) {
    for (const Wire& wire : everyWire()) {
        if (std::string(wire.implementation->name) != "descriptor")
            continue;
        Pair pair = wire();
        auto& transport = static_cast<FdTransport&>(*pair.transport);
        Received received(transport);
        QSignalSpy drained(&transport, &FdTransport::drained);
        transport.pauseReading(true);
        pair.peer->send("held back");
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(received.bytes, "") << wire.name;
        transport.pauseReading(false);
        EXPECT_TRUE(waitUntil([&] { return received.bytes == "held back"; })) << wire.name;

        transport.write(pattern(megabyte, 3));
        EXPECT_GT(transport.unsentBytes(), 0) << wire.name;
        ASSERT_TRUE(waitUntil([&] { return pair.peer->received.size() >= megabyte; }, 30000))
            << wire.name;
        EXPECT_EQ(transport.unsentBytes(), 0) << wire.name;
        EXPECT_EQ(drained.count(), 1) << wire.name;
    }
}
#endif

TEST(Transport, ACloseAskedForIsNoLoss) {
    for (const Wire& wire : everyWire()) {
        Pair pair = wire();
        QSignalSpy lost(pair.transport.get(), &Transport::linkLost);
        pair.transport->close();
        pair.peer->close();
        waitUntil([] { return false; }, 100);
        EXPECT_FALSE(pair.transport->isOpen()) << wire.name;
        EXPECT_EQ(lost.count(), 0) << wire.name;
    }
}

TEST(SerialTransport, DiscardsNullsWhenAsked) {
    for (const Implementation& implementation : implementations) {
        for (const bool discard : {false, true}) {
            Pair pair = ptyPair(implementation, discard);
            Received received(*pair.transport);
            ASSERT_EQ(::write(pair.peer->fd(), "a\0b", 3), 3);
            ASSERT_TRUE(waitUntil([&] { return received.bytes.endsWith('b'); }))
                << implementation.name;
            EXPECT_EQ(received.bytes, discard ? QByteArray("ab") : QByteArray("a\0b", 3))
                << implementation.name;
        }
    }
}

TEST(SerialTransport, SetsTheLineAndNamesWhatThePtyRefuses) {
    const struct {
        const char* line;
        QString refused;    // how the notice starts; empty: taken
        bool seenThroughQt; // whether Qt's port can tell that the pty kept its own setting
        speed_t speed;
        tcflag_t stopBits;
    } cases[] = {
        {"9600,N,8,1", "", true, B9600, 0},
        {"1200,N,8,2", "", true, B1200, CSTOPB},
        {"14400,N,8,1", "", true, 0, 0}, // a speed without a name of its own
        {"9600,E,8,1", "parity refused", true, 0, 0},
        // The pty drops mark parity without an error, and Qt's port never reads a setting
        // back; the line stays without parity, as the check below sees.
        {"9600,M,8,1", "parity refused", false, 0, 0},
        {"9600,N,7,1", "7 data bits refused", true, 0, 0},
        {"9600,N,4,1", "4 data bits refused", true, 0, 0},
        {"9600,N,8,1.5", "stop bits refused", true, 0, 0},
    };
    for (const Implementation& implementation : implementations) {
        for (const auto& c : cases) {
            const std::string name = implementation.name + std::string(" ") + c.line;
            const bool qt = implementation.name == std::string("qt");
            const QString refused = c.seenThroughQt || !qt ? c.refused : QString();
            PtyPair pty;
            std::unique_ptr<Transport> serial = implementation.serial();
            const QString error = openSerial(*serial, pty.path, QString::fromLatin1(c.line));
            EXPECT_TRUE(refused.isEmpty() ? error.isEmpty() : error.startsWith(refused))
                << name << ": " << error.toStdString();
            EXPECT_EQ(serial->isOpen(), refused.isEmpty()) << name;
            if (!refused.isEmpty()) {
                ::close(pty.master);
                continue;
            }
            termios t{};
            ASSERT_EQ(::tcgetattr(pty.slave, &t), 0);
            if (c.speed) {
                EXPECT_EQ(::cfgetospeed(&t), c.speed) << name;
            }
            EXPECT_EQ(t.c_cflag & CSTOPB, c.stopBits) << name;
            EXPECT_EQ(t.c_cflag & (CSIZE | PARENB | CRTSCTS | CLOCAL | CREAD), CS8 | CLOCAL | CREAD)
                << name;
            EXPECT_EQ(t.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0u) << name << ": raw";
            EXPECT_EQ(t.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP), 0u) << name << ": raw";
            EXPECT_EQ(t.c_oflag & OPOST, 0u) << name << ": raw";
            ::close(pty.master);
        }
    }
}

TEST(SerialTransport, ModemLinesAPtyCannotDriveAreAWarning) {
    for (const Implementation& implementation : implementations) {
        for (const bool wanted : {false, true}) {
            PtyPair pty;
            std::unique_ptr<Transport> serial = implementation.serial();
            QSignalSpy warnings(serial.get(), &Transport::warning);
            EXPECT_EQ(openSerial(*serial, pty.path, "9600,N,8,1", false, wanted), "")
                << implementation.name;
            EXPECT_TRUE(serial->isOpen()) << implementation.name;
            EXPECT_EQ(warnings.count(), wanted ? 1 : 0) << implementation.name;
            if (wanted) {
                EXPECT_EQ(warnings.at(0).at(0).toString(),
                          "DTR and RTS cannot be set on " + pty.path)
                    << implementation.name;
            }
            ::close(pty.master);
        }
    }
}

TEST(SerialTransport, AMissingDeviceIsNamedInTheRefusal) {
    for (const Implementation& implementation : implementations) {
        std::unique_ptr<Transport> serial = implementation.serial();
        EXPECT_EQ(openSerial(*serial, "/dev/larkspur-no-such-tty", "9600,N,8,1"),
                  "No such file or directory")
            << implementation.name;
        EXPECT_FALSE(serial->isOpen()) << implementation.name;
    }
}

} // namespace
