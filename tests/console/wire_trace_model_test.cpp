#include "common/qt_printers.h"
#include "console/wire_trace_model.h"
#include "core/virtual_event_pump.h"
#include "records/wire_trace.h"

#include <QAbstractItemModelTester>
#include <QTableView>
#include <QTest>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

const QDateTime noon(QDate(2026, 1, 5), QTime(12, 0));

// A trace of few rows with a view over it, so the view's own bookkeeping follows every
// removal and insertion, and a model tester that stops the program at a wrong one.
class WireTraceModelTest : public ::testing::Test {
protected:
    VirtualEventPump pump{noon};
    WireTrace trace{pump, 4};
    WireTraceModel model{trace};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QTableView view;
    int next = 0;
    void SetUp() override {
        view.setModel(&model);
        view.resize(400, 200);
        view.show();
    }
    // Receives the one-letter messages a, b, c, ... in turn.
    void receive(int count) {
        for (int i = 0; i < count; ++i)
            trace.received(QByteArray(1, char('a' + next++)), PmsMode::Hotel);
    }
    QString shown() const {
        QString letters;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QString text = model.index(row, WireTraceModel::Readable).data().toString();
            letters += text.isEmpty() ? QStringLiteral(".") : text;
        }
        return letters;
    }
};

TEST_F(WireTraceModelTest, FollowsTheRingAsItDropsItsOldestRows) {
    // Each step receives some rows, then the model announces what changed.
    const struct {
        int received;
        const char* shown;
    } steps[] = {
        {0, ""},     {2, "ab"},   {2, "abcd"},
        {1, "bcde"}, {3, "efgh"}, {4, "ijkl"}, // every row shown was dropped in one batch
        {9, "rstu"},                           // more than the ring holds
    };
    for (const auto& step : steps) {
        receive(step.received);
        model.sync();
        EXPECT_EQ(shown(), QString(step.shown)) << "after " << next << " rows";
    }
    model.clear();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(trace.size(), 0);
    receive(1);
    model.sync();
    EXPECT_EQ(shown(), "v");
}

TEST_F(WireTraceModelTest, PausedRowsStayPutAndResumingCatchesUp) {
    receive(3);
    model.sync();
    model.setPaused(true);
    receive(2);
    model.sync();
    EXPECT_EQ(trace.size(), 4) << "the trace goes on recording";
    EXPECT_EQ(shown(), ".bc") << "the row the ring dropped is blank, the others keep their place";
    model.setPaused(false);
    EXPECT_EQ(shown(), "bcde");
    model.setPaused(true);
    model.clear();
    receive(1);
    model.sync();
    EXPECT_EQ(model.rowCount(), 0) << "clearing while paused empties, and stays paused";
    model.setPaused(false);
    EXPECT_EQ(shown(), "f");
    receive(1);
    EXPECT_EQ(shown(), "f") << "recording a row only arms the batch";
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == "fg"; }, 5000));
}

TEST_F(WireTraceModelTest, ColumnsShowTimeDirectionNotationHexAndNote) {
    pump.advance(7);
    trace.sent(QByteArray("\x02"
                          "CHK1   101\x03"),
               PmsMode::Hotel);
    pump.advance(12);
    trace.received("\x06\r\n", PmsMode::Hotel);
    pump.advance(11);
    trace.sent("\x05", PmsMode::Hotel);
    pump.advance(1000);
    trace.finish("the link was closed");
    model.sync();
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < WireTraceModel::ColumnCount; ++column)
            cells << model.index(row, column).data().toString();
        rows << cells.join(u'|');
    }
    EXPECT_EQ(rows, QStringList({
                        "12:00:00.007|TX|<STX>CHK1   101<ETX>|02 43 48 4B 31 20 20 20 31 30 31 03|",
                        "12:00:00.019|RX|<ACK>\\x0D\\x0A|06 0D 0A|frame ACKed in 12 ms",
                        "12:00:00.030|TX|<ENQ>|05|",
                        "12:00:01.030|--|||no answer to the ENQ bid: the link was closed",
                    }));
}

} // namespace
