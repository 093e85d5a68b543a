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

// One way of building the transports.
struct Implementation {
    const char* name;
    std::unique_ptr<Transport> (*tcp)();
    std::unique_ptr<Transport> (*serial)();
    // Run once the TCP transport is connected.
    void (*connected)(Transport&);
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
     [](Transport& tcp) { shrinkBuffer(static_cast<TestTcp&>(tcp).descriptor(), SO_SNDBUF); }},
#endif
    // Qt's socket keeps what the kernel does not take in a buffer of its own.
    {"qt", [] { return std::unique_ptr<Transport>(new QtTcpTransport); },
     [] { return std::unique_ptr<Transport>(new QtSerialTransport); }, [](Transport&) {}},
};

// A connected pair: the transport under test and the raw peer, over TCP or a pty.
struct Pair {
    std::unique_ptr<Transport> transport;
    std::unique_ptr<StreamPeer> peer;
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
    return {std::move(tcp), std::make_unique<StreamPeer>(accepted, readLimit)};
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
        for (const int fd : {master, slave})
            if (fd >= 0)
                ::close(fd);
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
    return {std::move(serial), std::make_unique<StreamPeer>(std::exchange(pty.master, -1))};
}

// Every implementation over both links, as "<implementation> tcp|pty".
template <typename Body> void overEveryWire(Body body) {
    for (const Implementation& i : implementations) {
        body(i.name + std::string(" tcp"), tcpPair(i, 512));
        body(i.name + std::string(" pty"), ptyPair(i));
    }
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
    overEveryWire([](const std::string& name, Pair pair) {
        ASSERT_TRUE(pair.transport->isOpen()) << name;
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
            << name << ": " << pair.peer->received.size() << " out, " << received.bytes.size()
            << " in";
        EXPECT_TRUE(pair.peer->received == out) << name;
        EXPECT_TRUE(received.bytes == in) << name;
    });
}

// The ACK to an ENQ is written from inside the receiver and must be on the wire when the write
// returns, not after the next pass of the event loop: the receiver may block in a wait first.
TEST(Transport, AnAnswerWrittenFromTheReceiverLeavesAtOnce) {
    overEveryWire([](const std::string& name, Pair pair) {
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
        ASSERT_TRUE(waitUntil([&] { return answered >= 0; })) << name;
        EXPECT_EQ(answered, 1) << name;
        EXPECT_TRUE(waitUntil([&] { return pair.peer->received == "\x06"; })) << name;
    });
}

// The peer closes or resets the link after its last words; a close asked for is no loss.
TEST(Transport, ALostLinkIsReportedOnceAfterWhatCameBeforeIt) {
    for (const Implementation& implementation : implementations) {
        const struct {
            const char* name;
            bool tcp;
            bool reset;       // TCP: the peer resets the connection instead of closing it
            const char* lost; // nullptr: the transport is closed first, by its owner
        } cases[] = {{"tcp closed", true, false, "closed by the PBX"},
                     {"tcp reset", true, true, "closed by the PBX"},
                     {"pty closed", false, false, "the device hung up"},
                     {"tcp closed here", true, false, nullptr},
                     {"pty closed here", false, false, nullptr}};
        for (const auto& c : cases) {
            SCOPED_TRACE(implementation.name + std::string(" ") + c.name);
            Pair pair = c.tcp ? tcpPair(implementation) : ptyPair(implementation);
            Received received(*pair.transport);
            QSignalSpy lost(pair.transport.get(), &Transport::linkLost);
            ASSERT_EQ(::write(pair.peer->fd(), "last words", 10), 10);
            ASSERT_TRUE(waitUntil([&] { return received.bytes == "last words"; }));
            if (c.reset) {
                const linger abort{1, 0};
                ::setsockopt(pair.peer->fd(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
            }
            if (!c.lost)
                pair.transport->close();
            pair.peer->close();
            if (c.lost) {
                ASSERT_TRUE(waitUntil([&] { return lost.count() > 0; }));
                pair.transport->write("into the void");
            }
            waitUntil([] { return false; }, 100);
            EXPECT_FALSE(pair.transport->isOpen());
            ASSERT_EQ(lost.count(), c.lost ? 1 : 0);
            if (c.lost) {
                EXPECT_EQ(lost.at(0).at(0).toString(), c.lost);
            }
        }
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
        bool modemLines = false; // a pty has none: a warning, not a refusal
    } cases[] = {
        {"9600,N,8,1", "", true, B9600, 0},
        {"1200,N,8,2", "", true, B1200, CSTOPB},
        {"14400,N,8,1", "", true, 0, 0}, // a speed without a name of its own
        {"9600,N,8,1", "", true, B9600, 0, true},
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
            QSignalSpy warnings(serial.get(), &Transport::warning);
            const QString error =
                openSerial(*serial, pty.path, QString::fromLatin1(c.line), false, c.modemLines);
            EXPECT_TRUE(refused.isEmpty() ? error.isEmpty() : error.startsWith(refused))
                << name << ": " << error.toStdString();
            EXPECT_EQ(serial->isOpen(), refused.isEmpty()) << name;
            EXPECT_EQ(warnings.count() == 1 ? warnings.at(0).at(0).toString() : QString(),
                      c.modemLines ? "DTR and RTS cannot be set on " + pty.path : QString())
                << name;
            if (!refused.isEmpty())
                continue;
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
        }
        std::unique_ptr<Transport> serial = implementation.serial();
        EXPECT_EQ(openSerial(*serial, "/dev/larkspur-no-such-tty", "9600,N,8,1"),
                  "No such file or directory")
            << implementation.name;
        EXPECT_FALSE(serial->isOpen()) << implementation.name;
    }
}

} // namespace
