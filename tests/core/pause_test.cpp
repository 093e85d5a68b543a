#include "core/pause.h"
#include "core/virtual_event_pump.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// Every event due within the pause is handled inside it, the one due at its very end and one
// that an event scheduled too; none stretches it.
TEST(PauseSeconds, DeliversEventsInsideWithoutStretching) {
    VirtualEventPump pump;
    QList<qint64> deliveredAt;
    for (const qint64 ms : {400, 1000})
        pump.schedule(ms, [&] { deliveredAt << pump.elapsedMs(); });
    pump.schedule(100, [&] { pump.schedule(200, [&] { deliveredAt << pump.elapsedMs(); }); });
    pause_seconds(pump, 1.0f);
    EXPECT_EQ(deliveredAt, QList<qint64>({300, 400, 1000}));
    EXPECT_EQ(pump.elapsedMs(), 1000);
}

TEST(PauseSeconds, Durations) {
    struct Case {
        float seconds;
        qint64 expectedMs;
    } cases[] = {{0.1f, 100}, {1.0f, 1000}, {2.0f, 2000}, {5.0f, 5000}, {0.0f, 0}, {0.0004f, 0}};
    for (auto& c : cases) {
        VirtualEventPump pump;
        pause_seconds(pump, c.seconds);
        EXPECT_EQ(pump.elapsedMs(), c.expectedMs) << c.seconds;
    }
}

TEST(PauseSeconds, CrossingMidnightKeepsItsLength) {
    // 0.5 s before midnight, with and without an event after midnight.
    for (const bool eventAfterMidnight : {false, true}) {
        VirtualEventPump pump(QDateTime(QDate(2026, 1, 5), QTime(23, 59, 59, 500)));
        if (eventAfterMidnight)
            pump.schedule(700, [] {});
        pause_seconds(pump, 1.0f);
        EXPECT_EQ(pump.elapsedMs(), 1000) << eventAfterMidnight;
        EXPECT_EQ(pump.currentDateTime(), QDateTime(QDate(2026, 1, 6), QTime(0, 0, 0, 500)));
    }
}

TEST(VirtualEventPump, WaitReportsWhetherAnEventArrived) {
    VirtualEventPump pump;
    EXPECT_FALSE(pump.waitForEvent(250));
    EXPECT_EQ(pump.elapsedMs(), 250);
    bool ran = false;
    pump.schedule(100, [&] { ran = true; });
    EXPECT_TRUE(pump.waitForEvent(500));
    EXPECT_EQ(pump.elapsedMs(), 350);
    EXPECT_FALSE(ran) << "waiting wakes up; handling is processEvents' job";
    EXPECT_TRUE(pump.waitForEvent(0));
    pump.processEvents();
    EXPECT_TRUE(ran);
    EXPECT_FALSE(pump.waitForEvent(0));
}

} // namespace
