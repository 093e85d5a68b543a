// Run statistics keep a count per answer time, so the figures stay exact however long the run.
#include "records/run_statistics.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// An exchange of `type` answered after `ms`, or timed out when `ms` is negative.
Exchange answered(const QString& type, qint64 ms) {
    Exchange exchange;
    exchange.type = type;
    exchange.outcome = ms < 0 ? Exchange::Outcome::TimedOut : Exchange::Outcome::Acknowledged;
    exchange.ms = qMax<qint64>(0, ms);
    return exchange;
}

TEST(RunStatistics, MinimumMedianAndMaximumOfTheAnswerTimes) {
    const struct {
        const char* name;
        QList<qint64> answers; // -1: timed out
        qint64 min, median, max;
    } cases[] = {
        {"none answered", {-1, -1}, -1, -1, -1},
        {"one", {7}, 7, 7, 7},
        {"odd count", {30, 10, 20}, 10, 20, 30},
        {"even count: the upper middle", {40, 10, 30, 20}, 10, 30, 40},
        {"repeated times", {5, 5, 5, 9, 1}, 1, 5, 9},
        {"time-outs do not count", {-1, 3, -1, 8, 4}, 3, 4, 8},
    };
    for (const auto& c : cases) {
        RunStatistics statistics;
        for (const qint64 ms : c.answers)
            statistics.add(answered("check-in", ms));
        const RunStatistics::Row row = statistics.rows().value("check-in");
        EXPECT_EQ(row.sent, c.answers.size()) << c.name;
        EXPECT_EQ(row.minMs(), c.min) << c.name;
        EXPECT_EQ(row.medianMs(), c.median) << c.name;
        EXPECT_EQ(row.maxMs(), c.max) << c.name;
    }
}

TEST(RunStatistics, ManyAnswersKeepOneEntryPerDistinctTime) {
    RunStatistics statistics;
    for (int i = 0; i < 1000; ++i)
        statistics.add(answered("ENQ", i % 4));
    const RunStatistics::Row row = statistics.rows().value("ENQ");
    EXPECT_EQ(row.answerMs.size(), 4);
    EXPECT_EQ(row.answered, 1000);
    EXPECT_EQ(row.medianMs(), 2);
}

} // namespace
