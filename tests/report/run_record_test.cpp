// The report's record of a long run keeps its ends and every failure with its neighbours, and
// its page holds whatever the PBX sends as text.
#include "records/run_statistics.h"
#include "report/report_page.h"
#include "report/run_record.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

Exchange exchangeAt(int n, Exchange::Outcome outcome) {
    Exchange e;
    e.description = QStringLiteral("check-in room %1").arg(n);
    e.bytes = "\x02"
              "CHK1   101\x03";
    e.outcome = outcome;
    return e;
}

QList<qint64> numbersOf(const QList<ReportStep>& steps) {
    QList<qint64> numbers;
    for (const ReportStep& s : steps)
        numbers << s.number;
    return numbers;
}

TEST(RunRecord, KeepsTheEndsAndEachListedFailureWithItsNeighbours) {
    struct Case {
        int steps;
        QList<int> failing;
        QList<qint64> kept;
        qint64 leftOut; // failures beyond the list
    } cases[] = {
        {6, {}, {1, 2, 5, 6}, 0},
        {20, {10}, {1, 2, 8, 9, 10, 11, 12, 19, 20}, 0},
        // Neighbours that overlap are kept once; a failure past the list's end is only counted.
        {30, {10, 12, 25}, {1, 2, 8, 9, 10, 11, 12, 13, 14, 29, 30}, 1},
    };
    for (const Case& c : cases) {
        RunRecord record(RunRecord::Limits{2, 2, 2, 2});
        for (int n = 1; n <= c.steps; ++n)
            record.exchange(exchangeAt(n, c.failing.contains(n) ? Exchange::Outcome::Refused
                                                                : Exchange::Outcome::Acknowledged));
        EXPECT_EQ(numbersOf(record.steps()), c.kept) << c.steps;
        EXPECT_EQ(record.failuresLeftOut(), c.leftOut) << c.steps;
        EXPECT_EQ(record.counts().refused, c.failing.size());
    }
}

TEST(RunRecord, ThePageEscapesWhatThePbxSent) {
    RunRecord record;
    Exchange e = exchangeAt(1, Exchange::Outcome::TimedOut);
    e.from = Side::Pbx;
    e.description = QStringLiteral("PBX <b>\"&\x01");
    e.bytes = "\x02<i>\x7f\x03";
    e.note = QStringLiteral("no answer within 5 s to PBX <b>");
    record.exchange(e);
    const QString page = reportPage({QStringLiteral("<t>"), {}}, record, RunStatistics());
    EXPECT_TRUE(page.contains("PBX &lt;b&gt;&quot;&amp;\\x01")) << page.toStdString();
    EXPECT_TRUE(page.contains("<code>&lt;STX&gt;\\x3Ci&gt;\\x7F&lt;ETX&gt;</code>"));
    EXPECT_TRUE(page.contains("time-out: no answer within 5 s to PBX &lt;b&gt;"));
    EXPECT_FALSE(page.contains("<b>"));
    EXPECT_FALSE(page.contains("<i>"));
}

} // namespace
