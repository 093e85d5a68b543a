// One relay session over socket pairs: every byte both ways, a far side that stops reading, a
// side that hangs up with bytes still on their way, and the monitor that never writes.
#include "common/pbxsim_process.h"
#include "common/qt_printers.h"
#include "core/qt_event_pump.h"
#include "tap/relay.h"
#include "tap/socket_end.h"

#include <QSocketNotifier>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace larkspur;
using namespace larkspur::tap;
using larkspur::test::waitUntil;

namespace {

constexpr qsizetype megabyte = 1 << 20;

QByteArray pattern(qsizetype size, int seed) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char((i * 13 + i / 241 + seed) & 0xFF);
    return bytes;
}

// The PMS or the PBX: the far end of a socket pair, driven by the event loop.
class Peer {
public:
    explicit Peer(int fd) : m_fd(fd) {
        QObject::connect(&m_readable, &QSocketNotifier::activated, [this] { readSome(); });
        QObject::connect(&m_writable, &QSocketNotifier::activated, [this] { writeSome(); });
        m_writable.setEnabled(false);
    }
    ~Peer() { close(); }

    void send(const QByteArray& bytes) {
        m_unsent += bytes;
        m_writable.setEnabled(true);
    }
    void setReading(bool reading) { m_readable.setEnabled(reading && m_fd >= 0); }
    void close() {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }
    bool sentAll() const { return m_unsent.isEmpty(); }

    QByteArray received;
    bool hungUp = false; // the relay closed its end

private:
    void readSome() {
        char buffer[65536];
        const ssize_t n = ::read(m_fd, buffer, sizeof buffer);
        if (n > 0) {
            received.append(buffer, n);
        } else if (n == 0 || errno != EAGAIN) {
            hungUp = true;
            m_readable.setEnabled(false);
        }
    }
    void writeSome() {
        const ssize_t n = ::write(m_fd, m_unsent.constData(), size_t(m_unsent.size()));
        if (n > 0)
            m_unsent.remove(0, n);
        if (m_unsent.isEmpty())
            m_writable.setEnabled(false);
    }

    int m_fd;
    QSocketNotifier m_readable{m_fd, QSocketNotifier::Read};
    QSocketNotifier m_writable{m_fd, QSocketNotifier::Write};
    QByteArray m_unsent;
};

// The relay between two socket pairs, with what it announced.
struct Session {
    explicit Session(bool forward = true) {
        for (const Side side : {Side::Pms, Side::Pbx}) {
            int pair[2];
            ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair);
            ends[int(side)].adopt(pair[0], sideName(side) + QStringLiteral(" peer"));
            peers[int(side)] = std::make_unique<Peer>(pair[1]);
        }
        relay = std::make_unique<Relay>(pump, &ends[0], &ends[1], forward);
        QObject::connect(relay.get(), &Relay::passed, [this](Side from, const QByteArray& bytes) {
            passed[int(from)] += bytes;
            // What waits to leave towards the other side, right after a read.
            largestUnsent = qMax(largestUnsent, ends[int(otherSide(from))].unsentBytes());
        });
        QObject::connect(relay.get(), &Relay::ended,
                         [this](const QString& reason) { endings << reason; });
    }
    Peer& peer(Side side) { return *peers[int(side)]; }

    QtEventPump pump;
    SocketEnd ends[2];
    std::unique_ptr<Peer> peers[2];
    std::unique_ptr<Relay> relay;
    QByteArray passed[2];
    qsizetype largestUnsent = 0;
    QStringList endings;
};

TEST(Relay, EveryByteCrossesBothWaysUnchanged) {
    Session s;
    const QByteArray fromPms = pattern(megabyte, 1), fromPbx = pattern(megabyte, 2);
    s.peer(Side::Pms).send(fromPms);
    s.peer(Side::Pbx).send(fromPbx);
    ASSERT_TRUE(waitUntil(
        [&] {
            return s.peer(Side::Pbx).received.size() >= megabyte &&
                   s.peer(Side::Pms).received.size() >= megabyte;
        },
        20000));
    EXPECT_TRUE(s.peer(Side::Pbx).received == fromPms);
    EXPECT_TRUE(s.peer(Side::Pms).received == fromPbx);
    EXPECT_TRUE(s.passed[int(Side::Pms)] == fromPms);
    EXPECT_TRUE(s.passed[int(Side::Pbx)] == fromPbx);
    EXPECT_TRUE(s.endings.isEmpty());
}

TEST(Relay, AFarSideThatStopsReadingHoldsTheSenderBackAndLosesNothing) {
    Session s;
    const QByteArray flood = pattern(8 * megabyte, 3);
    s.peer(Side::Pbx).setReading(false);
    s.peer(Side::Pms).send(flood);
    // The PMS's bytes wait in its own socket once the relay holds what it may.
    waitUntil([] { return false; }, 500);
    EXPECT_FALSE(s.peer(Side::Pms).sentAll());
    EXPECT_LE(s.largestUnsent, Relay::maxUnsentBytes + 64 * 1024);
    s.peer(Side::Pbx).setReading(true);
    ASSERT_TRUE(
        waitUntil([&] { return s.peer(Side::Pbx).received.size() >= flood.size(); }, 30000));
    EXPECT_TRUE(s.peer(Side::Pbx).received == flood);
    EXPECT_LE(s.largestUnsent, Relay::maxUnsentBytes + 64 * 1024);
}

TEST(Relay, EitherSideHangingUpEndsTheSessionAfterItsLastBytes) {
    const struct {
        Side hangsUp;
        qsizetype lastBytes;
        const char* reason;
    } cases[] = {
        {Side::Pms, 10, "the PMS hung up (PMS peer: the connection was closed)"},
        {Side::Pbx, 10, "the PBX hung up (PBX peer: the connection was closed)"},
        // More than the far side's socket holds: the relay still has them when the end comes.
        {Side::Pms, 2 * megabyte, "the PMS hung up (PMS peer: the connection was closed)"},
    };
    for (const auto& c : cases) {
        Session s;
        Peer& leaving = s.peer(c.hangsUp);
        Peer& staying = s.peer(otherSide(c.hangsUp));
        const QByteArray last = pattern(c.lastBytes, 4);
        leaving.send(last);
        ASSERT_TRUE(waitUntil([&] { return leaving.sentAll(); }, 10000));
        leaving.close();
        ASSERT_TRUE(waitUntil([&] { return staying.hungUp; }, 10000)) << c.reason;
        EXPECT_TRUE(staying.received == last) << c.reason;
        EXPECT_EQ(s.endings, QStringList{c.reason});
        EXPECT_FALSE(s.ends[0].isOpen());
        EXPECT_FALSE(s.ends[1].isOpen());
    }
}

TEST(Relay, TheMonitorOnlyListens) {
    Session s(false);
    s.peer(Side::Pms).send("<from the PMS>");
    s.peer(Side::Pbx).send("<from the PBX>");
    ASSERT_TRUE(waitUntil(
        [&] { return s.passed[0] == "<from the PMS>" && s.passed[1] == "<from the PBX>"; }));
    waitUntil([] { return false; }, 100);
    EXPECT_EQ(s.peer(Side::Pms).received, "");
    EXPECT_EQ(s.peer(Side::Pbx).received, "");
}

TEST(Relay, ClosedFromOutsideItClosesBothEnds) {
    Session s;
    s.relay->close("the tap stopped");
    EXPECT_EQ(s.endings, QStringList{"the tap stopped"});
    ASSERT_TRUE(waitUntil([&] { return s.peer(Side::Pms).hungUp && s.peer(Side::Pbx).hungUp; }));
}

} // namespace
