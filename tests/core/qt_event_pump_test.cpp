#include "core/pause.h"
#include "core/qt_event_pump.h"

#include <QTimer>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// The real pump: these only check that it wakes for events and handles them; how precisely it
// keeps time is measured in bench/.
TEST(QtEventPump, WakesForAnEventAndHandlesItInsideAPause) {
    QtEventPump pump;
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    pause_seconds(pump, 0.05f);
    EXPECT_TRUE(fired);
}

TEST(QtEventPump, WaitWithoutEventsTimesOut) {
    QtEventPump pump;
    pump.processEvents();
    EXPECT_FALSE(pump.waitForEvent(5));
}

TEST(QtEventPump, WaitReturnsOnEventBeforeTheDeadline) {
    QtEventPump pump;
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    const double before = pump.monotonicSeconds();
    EXPECT_TRUE(pump.waitForEvent(60000));
    pump.processEvents();
    EXPECT_TRUE(fired);
    EXPECT_LT(pump.monotonicSeconds() - before, 30.0);
}

TEST(QtEventPump, ClockNeverGoesBackAndStampsFollowTheWallClock) {
    QtEventPump pump;
    const double first = pump.monotonicSeconds();
    EXPECT_GE(first, 0.0);
    EXPECT_GE(pump.monotonicSeconds(), first);
    EXPECT_LE(qAbs(pump.currentDateTime().secsTo(QDateTime::currentDateTime())), 2);
}

} // namespace
