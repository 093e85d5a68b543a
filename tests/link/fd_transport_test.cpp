// The descriptor transports against a raw peer over loopback TCP and a pty pair: every byte
// both ways, in order, through full buffers; a lost link; the tty's line settings.
#include "common/pbxsim_process.h"
#include "link/serial_transport.h"
#include "link/tcp_transport.h"

#include <QSignalSpy>
#include <QSocketNotifier>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

constexpr qsizetype megabyte = 1 << 20;

// Every byte value, in a pattern that shows a lost, doubled or swapped stretch.
QByteArray pattern(qsizetype size, int seed) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char((i * 7 + i / 251 + seed) & 0xFF);
    return bytes;
}

// The PBX end: a raw non-blocking descriptor driven by the event loop. It reads at most
// `readLimit` bytes a wake-up, so a small limit plays a PBX that reads slowly.
class Peer {
public:
    explicit Peer(int fd, qsizetype readLimit = 65536) : m_fd(fd), m_readLimit(readLimit) {
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
        QObject::connect(&m_readable, &QSocketNotifier::activated, [this] { readSome(); });
        QObject::connect(&m_writable, &QSocketNotifier::activated, [this] { writeSome(); });
        m_writable.setEnabled(false);
    }
    ~Peer() { close(); }

    void send(const QByteArray& bytes) {
        m_unsent += bytes;
        m_writable.setEnabled(true);
    }
    void close() {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }
    int fd() const { return m_fd; }

    QByteArray received;

private:
    void readSome() {
        QByteArray buffer(m_readLimit, Qt::Uninitialized);
        const ssize_t n = ::read(m_fd, buffer.data(), size_t(buffer.size()));
        if (n > 0)
            received += buffer.first(n);
        else if (n == 0 || errno != EAGAIN)
            m_readable.setEnabled(false); // the console hung up
    }
    void writeSome() {
        const ssize_t n = ::write(m_fd, m_unsent.constData(), size_t(m_unsent.size()));
        if (n > 0)
            m_unsent.remove(0, n);
        if (m_unsent.isEmpty())
            m_writable.setEnabled(false);
    }

    int m_fd;
    qsizetype m_readLimit;
    QSocketNotifier m_readable{m_fd, QSocketNotifier::Read};
    QSocketNotifier m_writable{m_fd, QSocketNotifier::Write};
    QByteArray m_unsent;
};

// The transport with its descriptor in reach, to shrink its send buffer.
struct TestTcp : TcpTransport {
    using FdTransport::descriptor;
};

void shrinkBuffer(int fd, int option) {
    const int size = 16384;
    ::setsockopt(fd, SOL_SOCKET, option, &size, sizeof size);
}

// A connected pair: the transport under test and the raw peer, over TCP or a pty.
struct Pair {
    std::unique_ptr<Transport> transport;
    std::unique_ptr<Peer> peer;
    QString lostReason; // what linkLost says when the peer goes away
};

Pair tcpPair(qsizetype readLimit = 65536) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Inherited by the accepted socket: with the transport's small send buffer, a megabyte
    // written at once mostly waits in the transport.
    shrinkBuffer(listener, SO_RCVBUF);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(listener, reinterpret_cast<sockaddr*>(&address), length);
    ::listen(listener, 1);
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);

    auto tcp = std::make_unique<TestTcp>();
    tcp->connectToHost(QStringLiteral("127.0.0.1"), ntohs(address.sin_port));
    waitUntil([&] { return tcp->isOpen(); });
    shrinkBuffer(tcp->descriptor(), SO_SNDBUF);
    const int accepted = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    ::close(listener);
    return {std::move(tcp), std::make_unique<Peer>(accepted, readLimit),
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

QString openSerial(SerialTransport& serial, const QString& path, const QString& line,
                   bool nullDiscard = false, bool modemLines = false) {
    SerialOptions options;
    options.lineSettings = line;
    options.nullDiscard = nullDiscard;
    options.dtr = options.rts = modemLines;
    const QString error = serial.applySerialOptions(options);
    return error.isEmpty() ? serial.openPort(path) : error;
}

Pair ptyPair(bool nullDiscard = false) {
    PtyPair pty;
    auto serial = std::make_unique<SerialTransport>();
    EXPECT_EQ(openSerial(*serial, pty.path, QStringLiteral("9600,N,8,1"), nullDiscard), "");
    return {std::move(serial), std::make_unique<Peer>(pty.master),
            QStringLiteral("the device hung up")};
}

struct Link {
    const char* name;
    Pair (*make)();
};
const Link links[] = {{"tcp", [] { return tcpPair(512); }}, {"pty", [] { return ptyPair(); }}};

// What the transport hands on, one readAll per wake-up as the receiver does.
struct Received {
    QByteArray bytes;
    explicit Received(Transport& transport) {
        QObject::connect(&transport, &Transport::dataReceived,
                         [this, &transport] { bytes += transport.readAll(); });
    }
};

TEST(FdTransport, AMegabyteEachWayArrivesWholeAndInOrder) {
    for (const Link& link : links) {
        Pair pair = link.make();
        ASSERT_TRUE(pair.transport->isOpen()) << link.name;
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
            << link.name << ": " << pair.peer->received.size() << " out, " << received.bytes.size()
            << " in";
        EXPECT_TRUE(pair.peer->received == out) << link.name;
        EXPECT_TRUE(received.bytes == in) << link.name;
    }
}

TEST(FdTransport, ALostLinkIsReportedOnceAfterWhatCameBeforeIt) {
    const struct {
        const char* name;
        Pair (*make)();
        bool reset; // TCP only: the peer resets the connection instead of closing it
    } cases[] = {{"tcp closed", [] { return tcpPair(); }, false},
                 {"tcp reset", [] { return tcpPair(); }, true},
                 {"pty closed", [] { return ptyPair(); }, false}};
    for (const auto& c : cases) {
        Pair pair = c.make();
        Received received(*pair.transport);
        QSignalSpy lost(pair.transport.get(), &Transport::linkLost);
        ASSERT_EQ(::write(pair.peer->fd(), "last words", 10), 10);
        ASSERT_TRUE(waitUntil([&] { return received.bytes == "last words"; })) << c.name;
        if (c.reset) {
            const linger abort{1, 0};
            ::setsockopt(pair.peer->fd(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        }
        pair.peer->close();
        ASSERT_TRUE(waitUntil([&] { return lost.count() > 0; })) << c.name;
        pair.transport->write("into the void");
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(lost.count(), 1) << c.name;
        EXPECT_EQ(lost.at(0).at(0).toString(), pair.lostReason) << c.name;
        EXPECT_FALSE(pair.transport->isOpen()) << c.name;
    }
}

TEST(FdTransport, APausedReaderLeavesBytesWaitingAndDrainedSaysWhenAllLeft) {
    for (const Link& link : links) {
        Pair pair = link.make();
        auto& transport = static_cast<FdTransport&>(*pair.transport);
        Received received(transport);
        QSignalSpy drained(&transport, &FdTransport::drained);
        transport.pauseReading(true);
        pair.peer->send("held back");
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(received.bytes, "") << link.name;
        transport.pauseReading(false);
        EXPECT_TRUE(waitUntil([&] { return received.bytes == "held back"; })) << link.name;

        transport.write(pattern(megabyte, 3));
        EXPECT_GT(transport.unsentBytes(), 0) << link.name;
        ASSERT_TRUE(waitUntil([&] { return pair.peer->received.size() >= megabyte; }, 30000))
            << link.name;
        EXPECT_EQ(transport.unsentBytes(), 0) << link.name;
        EXPECT_EQ(drained.count(), 1) << link.name;
    }
}

TEST(FdTransport, ACloseAskedForIsNoLoss) {
    for (const Link& link : links) {
        Pair pair = link.make();
        QSignalSpy lost(pair.transport.get(), &Transport::linkLost);
        pair.transport->close();
        pair.peer->close();
        waitUntil([] { return false; }, 100);
        EXPECT_FALSE(pair.transport->isOpen()) << link.name;
        EXPECT_EQ(lost.count(), 0) << link.name;
    }
}

TEST(SerialTransport, DiscardsNullsWhenAsked) {
    for (const bool discard : {false, true}) {
        Pair pair = ptyPair(discard);
        Received received(*pair.transport);
        ASSERT_EQ(::write(pair.peer->fd(), "a\0b", 3), 3);
        ASSERT_TRUE(waitUntil([&] { return received.bytes.endsWith('b'); }));
        EXPECT_EQ(received.bytes, discard ? QByteArray("ab") : QByteArray("a\0b", 3));
    }
}

TEST(SerialTransport, SetsTheLineAndNamesWhatThePtyRefuses) {
    const struct {
        const char* line;
        QString refused; // how the notice starts; empty: taken
        speed_t speed;
        tcflag_t stopBits;
    } cases[] = {
        {"9600,N,8,1", "", B9600, 0},
        {"1200,N,8,2", "", B1200, CSTOPB},
        {"14400,N,8,1", "", 0, 0}, // a speed without a name of its own
        {"9600,E,8,1", "parity refused", 0, 0},
        {"9600,M,8,1", "parity refused", 0, 0},
        {"9600,N,7,1", "7 data bits refused", 0, 0},
        {"9600,N,4,1", "4 data bits refused", 0, 0},
        {"9600,N,8,1.5", "stop bits refused", 0, 0},
    };
    for (const auto& c : cases) {
        PtyPair pty;
        SerialTransport serial;
        const QString error = openSerial(serial, pty.path, QString::fromLatin1(c.line));
        EXPECT_TRUE(c.refused.isEmpty() ? error.isEmpty() : error.startsWith(c.refused))
            << c.line << ": " << error.toStdString();
        EXPECT_EQ(serial.isOpen(), c.refused.isEmpty()) << c.line;
        if (!c.refused.isEmpty()) {
            ::close(pty.master);
            continue;
        }
        termios t{};
        ASSERT_EQ(::tcgetattr(pty.slave, &t), 0);
        if (c.speed) {
            EXPECT_EQ(::cfgetospeed(&t), c.speed) << c.line;
        }
        EXPECT_EQ(t.c_cflag & CSTOPB, c.stopBits) << c.line;
        EXPECT_EQ(t.c_cflag & (CSIZE | PARENB | CRTSCTS | CLOCAL | CREAD), CS8 | CLOCAL | CREAD)
            << c.line;
        EXPECT_EQ(t.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0u) << c.line << ": raw";
        EXPECT_EQ(t.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP), 0u) << c.line << ": raw";
        EXPECT_EQ(t.c_oflag & OPOST, 0u) << c.line << ": raw";
        ::close(pty.master);
    }
}

TEST(SerialTransport, ModemLinesAPtyCannotDriveAreAWarning) {
    for (const bool wanted : {false, true}) {
        PtyPair pty;
        SerialTransport serial;
        QSignalSpy warnings(&serial, &Transport::warning);
        EXPECT_EQ(openSerial(serial, pty.path, "9600,N,8,1", false, wanted), "");
        EXPECT_TRUE(serial.isOpen());
        EXPECT_EQ(warnings.count(), wanted ? 1 : 0);
        if (wanted) {
            EXPECT_EQ(warnings.at(0).at(0).toString(), "DTR and RTS cannot be set on " + pty.path);
        }
        ::close(pty.master);
    }
}

TEST(SerialTransport, AMissingDeviceIsNamedInTheRefusal) {
    SerialTransport serial;
    EXPECT_EQ(openSerial(serial, "/dev/larkspur-no-such-tty", "9600,N,8,1"),
              "No such file or directory");
    EXPECT_FALSE(serial.isOpen());
}

} // namespace
