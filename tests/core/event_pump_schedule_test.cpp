#include "core/pause.h"
#include "core/qt_event_pump.h"
#include "core/virtual_event_pump.h"

#include <QObject>
#include <gtest/gtest.h>

#include <memory>

using namespace larkspur;

namespace {

// Both pumps keep the same promise about delayed tasks; the simulator's session relies on it in
// real time and the tests in virtual time.
template <typename Pump> class ScheduledTasks : public ::testing::Test {
protected:
    Pump pump;
};
using Pumps = ::testing::Types<QtEventPump, VirtualEventPump>;
TYPED_TEST_SUITE(ScheduledTasks, Pumps);

TYPED_TEST(ScheduledTasks, RunInTheOrderTheyFallDue) {
    QObject context;
    QString order;
    this->pump.schedule(20, &context, [&] { order += u'b'; });
    this->pump.schedule(10, &context, [&] { order += u'a'; });
    this->pump.schedule(20, &context, [&] { order += u'c'; });
    EXPECT_EQ(order, "") << "nothing runs before its time";
    pause_seconds(this->pump, 0.05f);
    EXPECT_EQ(order, "abc");
}

TYPED_TEST(ScheduledTasks, DieWithTheirContext) {
    auto leaving = std::make_unique<QObject>();
    QObject staying;
    QStringList ran;
    this->pump.schedule(10, leaving.get(), [&] { ran << "leaving"; });
    this->pump.schedule(10, &staying, [&] { ran << "staying"; });
    leaving.reset();
    pause_seconds(this->pump, 0.05f);
    EXPECT_EQ(ran, QStringList{"staying"});
}

} // namespace
