// One relay session over socket pairs: every byte both ways, a far side that stops reading, a
// side that hangs up with bytes still on their way, and the monitor that never writes.
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
        StreamPeer& leaving = s.peer(c.hangsUp);
        StreamPeer& staying = s.peer(otherSide(c.hangsUp));
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
