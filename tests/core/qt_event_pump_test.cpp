#include "core/qt_event_pump.h"

#include <QTimer>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// The real pump wakes for events and stamps with the wall clock; how precisely it keeps time is
// measured in bench/. Its delayed tasks are tested beside the virtual pump's.
TEST(QtEventPump, AWaitEndsOnAnEventOrAtItsDeadline) {
    QtEventPump pump;
    pump.processEvents();
    EXPECT_FALSE(pump.waitForEvent(5));
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    EXPECT_TRUE(pump.waitForEvent(60000));
    pump.processEvents();
    EXPECT_TRUE(fired);
    EXPECT_LE(qAbs(pump.currentDateTime().secsTo(QDateTime::currentDateTime())), 2);
}

} // namespace
