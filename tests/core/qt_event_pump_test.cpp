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
    const double before = pump.secondsSinceMidnight();
    EXPECT_TRUE(pump.waitForEvent(60000));
    pump.processEvents();
    EXPECT_TRUE(fired);
    const double waited = pump.secondsSinceMidnight() - before;
    EXPECT_LT(waited < 0 ? waited + 86400 : waited, 30.0);
}

TEST(QtEventPump, ClockFollowsTheWallClock) {
    QtEventPump pump;
    const double s = pump.secondsSinceMidnight();
    EXPECT_GE(s, 0.0);
    EXPECT_LT(s, 86400.0);
    EXPECT_LE(qAbs(pump.currentDateTime().secsTo(QDateTime::currentDateTime())), 2);
}

} // namespace
