// One relay session over socket pairs: a far side that stops reading, and a side that hangs up
// with bytes still on their way. The tap's end-to-end tests play the rest.
#include "common/pbxsim_process.h"
#include "common/qt_printers.h"
#include "common/stream_peer.h"
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
using namespace larkspur::test;

namespace {

// The relay between two socket pairs, with what it announced.
struct Session {
    explicit Session(bool forward = true) {
        for (const Side side : {Side::Pms, Side::Pbx}) {
            int pair[2];
            ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair);
            ends[int(side)].adopt(pair[0], sideName(side) + QStringLiteral(" peer"));
            peers[int(side)] = std::make_unique<StreamPeer>(pair[1]);
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
    StreamPeer& peer(Side side) { return *peers[int(side)]; }

    QtEventPump pump;
    SocketEnd ends[2];
    std::unique_ptr<StreamPeer> peers[2];
    std::unique_ptr<Relay> relay;
    QByteArray passed[2];
    qsizetype largestUnsent = 0;
    QStringList endings;
};

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

// More than the far side's socket holds: the relay still has them when the end comes. The
// end-to-end tests hang up either side after a few bytes.
TEST(Relay, ASideThatHangsUpEndsTheSessionAfterItsLastBytes) {
    Session s;
    const QByteArray last = pattern(2 * megabyte, 4);
    s.peer(Side::Pms).send(last);
    ASSERT_TRUE(waitUntil([&] { return s.peer(Side::Pms).sentAll(); }, 10000));
    s.peer(Side::Pms).close();
    ASSERT_TRUE(waitUntil([&] { return s.peer(Side::Pbx).hungUp; }, 10000));
    EXPECT_TRUE(s.peer(Side::Pbx).received == last);
    EXPECT_EQ(s.endings, QStringList{"the PMS hung up (PMS peer: the connection was closed)"});
    EXPECT_FALSE(s.ends[0].isOpen());
    EXPECT_FALSE(s.ends[1].isOpen());
}

} // namespace
