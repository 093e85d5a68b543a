#include "console/console_fixture.h"
#include "console/run_statistics_dialog.h"
#include "console/wire_trace_panel.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>
#include <QTableWidget>
#include <QTest>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ViewMenuTest : public ConsoleFixture {
protected:
    WireTracePanel* panel() { return find<WireTracePanel>("wireTraceDock"); }
    WireTraceModel& model() { return panel()->model(); }

    void connectAndCheckIn() {
        pbxAcknowledges();
        find<QAbstractButton>("cmd_connect")->click();
        QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
        checkIn();
    }
    void checkIn() { find<QAbstractButton>("cmd_chk_in")->click(); }
    // Announces the rows and lets the view lay them out.
    void showNow() {
        model().sync();
        QCoreApplication::processEvents();
    }

    // Direction, readable notation and note of each row the table shows.
    QStringList rowsShown() {
        QStringList rows;
        for (int row = 0; row < model().rowCount(); ++row) {
            QStringList cells;
            for (int column :
                 {WireTraceModel::Direction, WireTraceModel::Readable, WireTraceModel::Note})
                cells << model().index(row, column).data().toString();
            rows << cells.join(u'|');
        }
        return rows;
    }

    static QStringList savedLines(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        EXPECT_EQ(lines.takeLast(), "") << "every line ends";
        return lines;
    }

    QTableWidget* statisticsTable() {
        find<QAction>("mnuRunStatistics")->trigger();
        auto* dialog = find<RunStatisticsDialog>("runStatisticsDialog");
        EXPECT_TRUE(dialog->isVisible());
        return dialog->findChild<QTableWidget*>("runStatisticsTable");
    }
    // The row of `type`, every cell but the type; empty when there is none.
    QStringList statisticsOf(QTableWidget* table, const QString& type) {
        for (int row = 0; row < table->rowCount(); ++row) {
            if (table->item(row, 0)->text() != type)
                continue;
            QStringList cells;
            for (int column = 1; column < table->columnCount(); ++column)
                cells << table->item(row, column)->text();
            return cells;
        }
        return {};
    }
};

TEST_F(ViewMenuTest, SitsBetweenOptionsAndHelpAndOpensThePanelAndTheDialog) {
    QStringList menus;
    for (QAction* a : window().menuBar()->actions())
        menus << a->menu()->objectName();
    EXPECT_EQ(menus, QStringList({"mnuFile", "mnuOptions", "mnuView", "mnuHelp"}));

    auto* trace = find<QAction>("mnuWireTrace");
    EXPECT_EQ(trace->text(), "&Wire Trace");
    EXPECT_TRUE(trace->isCheckable());
    EXPECT_FALSE(panel()->isVisible());
    trace->trigger();
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_TRUE(trace->isChecked());
    trace->trigger();
    EXPECT_FALSE(panel()->isVisible());

    EXPECT_FALSE(find<QWidget>("runStatisticsDialog")->isVisible());
    find<QAction>("mnuRunStatistics")->trigger();
    EXPECT_TRUE(find<QWidget>("runStatisticsDialog")->isVisible());
}

TEST_F(ViewMenuTest, ShowsTheHandshakeOfConnectAndCheckInBesideAnUntouchedLog) {
    connectAndCheckIn();
    model().sync();
    EXPECT_EQ(rowsShown(), QStringList({
                               "TX|<ENQ>|",
                               "RX|<ACK>|ENQ answered in 10 ms (ACKed)",
                               "--||TCP 127.0.0.1:15374 connected",
                               "TX|<ENQ>|",
                               "RX|<ACK>|ENQ answered in 10 ms (ACKed)",
                               "TX|<STX>CHK1   101<ETX>|",
                               "RX|<ACK>|frame ACKed in 10 ms",
                           }));

    const QString log = session.log().logText();
    EXPECT_FALSE(log.contains(QChar(2)) || log.contains(QChar(6))) << log;
    EXPECT_FALSE(log.contains("ACKed") || log.contains(":00.")) << log;

    find<QAbstractButton>("cmd_disconnect")->click();
    find<QAction>("mnuVoiceMail")->trigger();
    tcp.onWrite = {}; // the voice-mail connection test goes unanswered
    find<QAbstractButton>("cmd_connect")->click();
    find<QAbstractButton>("cmd_disconnect")->click();
    model().sync();
    const QStringList last = rowsShown().mid(rowsShown().size() - 2);
    EXPECT_TRUE(last[0].startsWith("--||no answer")) << last[0];
    EXPECT_EQ(last[1], "--||TCP 127.0.0.1:15374 closed by the console");
}

TEST_F(ViewMenuTest, SavesEveryRowAsText) {
    connectAndCheckIn();
    const QString path = dir.filePath("trace.txt");
    op.filesToSave = {path};
    find<QAbstractButton>("wireTraceSave")->click();
    const QStringList lines = savedLines(path);
    QStringList withoutTime;
    for (const QString& line : lines)
        withoutTime << line.mid(13);
    EXPECT_EQ(withoutTime, QStringList({
                               "TX <ENQ>   | 05",
                               "RX <ACK>   | 06   ; ENQ answered in 10 ms (ACKed)",
                               "-- TCP 127.0.0.1:15374 connected",
                               "TX <ENQ>   | 05",
                               "RX <ACK>   | 06   ; ENQ answered in 10 ms (ACKed)",
                               "TX <STX>CHK1   101<ETX>   | 02 43 48 4B 31 20 20 20 31 30 31 03",
                               "RX <ACK>   | 06   ; frame ACKed in 10 ms",
                           }));
    EXPECT_TRUE(
        QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d ").match(lines.first()).hasMatch());

    // Cancelled, nothing is written; refused, the operator is told.
    QFile::remove(path);
    find<QAbstractButton>("wireTraceSave")->click();
    EXPECT_FALSE(QFile::exists(path));
    op.filesToSave = {dir.filePath("missing/trace.txt")};
    find<QAbstractButton>("wireTraceSave")->click();
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices[0].startsWith("Cannot write " + dir.filePath("missing/trace.txt")));
}

TEST_F(ViewMenuTest, ALostLinkIsMarkedWithItsTimeAndReason) {
    connectAndCheckIn();
    pump.advance(3'600'000); // an hour of silence, then the PBX goes away
    tcp.loseLink("closed by the PBX");
    pump.processEvents();
    const QString path = dir.filePath("trace.txt");
    op.filesToSave = {path};
    find<QAbstractButton>("wireTraceSave")->click();
    const QStringList lines = savedLines(path);
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_EQ(lines.last().mid(12), " -- TCP 127.0.0.1:15374 lost: closed by the PBX");
    EXPECT_EQ(lines.last().left(8), pump.currentDateTime().toString("HH:mm:ss"));
    EXPECT_EQ(session.log().logText().count("closed by the PBX"), 0)
        << "the traffic log is as it was";
}

TEST_F(ViewMenuTest, AWaitsTimeIsTheTimeToThePbxsMessageNotToTheClosedBox) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
    // The PBX tells the room's status 400 ms into the wait; the operator reads the box for 8 s.
    tcp.deliver("\x02STS2   101\x03", 400);
    op.onNotify = [this](const QString&) { pump.advance(8000); };
    Q_EMIT find<QComboBox>("cmb_wait")->textActivated("sts2");
    EXPECT_EQ(op.notices, QStringList({"successfully received --> sts2"}));
    EXPECT_EQ(statisticsOf(statisticsTable(), "wait sts2"),
              QStringList({"1", "1", "0", "0", "400", "400", "400"}));
}

TEST_F(ViewMenuTest, PauseFreezesTheViewWhileTheTraceRecords) {
    connectAndCheckIn();
    model().sync();
    const int before = model().rowCount();
    auto* pause = find<QAbstractButton>("wireTracePause");
    pause->click();
    checkIn();
    model().sync();
    EXPECT_EQ(model().rowCount(), before);

    const QString path = dir.filePath("trace.txt");
    op.filesToSave = {path};
    find<QAbstractButton>("wireTraceSave")->click();
    const qsizetype recorded = savedLines(path).size();
    EXPECT_EQ(recorded, before + 4) << "the trace went on recording";
    pause->click();
    EXPECT_EQ(model().rowCount(), recorded) << "resuming catches up";

    find<QAbstractButton>("wireTraceClear")->click();
    EXPECT_EQ(model().rowCount(), 0);
    checkIn();
    model().sync();
    EXPECT_EQ(rowsShown().first(), "TX|<ENQ>|") << "recording goes on after a clear";
}

TEST_F(ViewMenuTest, FollowsTheNewestRowUntilPaused) {
    find<QAction>("mnuWireTrace")->trigger();
    connectAndCheckIn();
    for (int i = 0; i < 20; ++i)
        checkIn();
    showNow();
    QScrollBar* bar = find<QTableView>("wireTraceView")->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());

    find<QAbstractButton>("wireTracePause")->click();
    bar->setValue(0);
    checkIn();
    showNow();
    EXPECT_EQ(bar->value(), 0) << "paused, the operator reads where they scrolled";
    const int before = bar->maximum();
    find<QAbstractButton>("wireTracePause")->click();
    QCoreApplication::processEvents();
    EXPECT_GT(bar->maximum(), before);
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(ViewMenuTest, StatisticsCountEachExchangeLiveUntilReset) {
    connectAndCheckIn();
    QTableWidget* table = statisticsTable();
    // sent, acked, refused, timed out, answer ms min, median, max
    EXPECT_EQ(statisticsOf(table, "check-in"), QStringList({"1", "1", "0", "0", "10", "10", "10"}));
    EXPECT_EQ(statisticsOf(table, "ENQ"), QStringList({"2", "2", "0", "0", "10", "10", "10"}));

    tcp.onWrite = [this](const QByteArray& bytes) {
        tcp.deliver(QByteArray(1, bytes.startsWith('\x02') ? 21 : 6), 30);
    };
    checkIn();
    Q_EMIT session.events().expectationEnded("sts2", true, 40);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return statisticsOf(table, "check-in").value(0) == "6"; }, 5000))
        << "a NAKed frame goes out five times";
    EXPECT_EQ(statisticsOf(table, "check-in"), QStringList({"6", "1", "5", "0", "10", "30", "30"}));
    EXPECT_EQ(statisticsOf(table, "wait sts2"),
              QStringList({"1", "1", "0", "0", "40", "40", "40"}));

    // Enter closes the dialog, and Reset asks first: Enter there keeps every count.
    auto* dialog = find<RunStatisticsDialog>("runStatisticsDialog");
    const QStringList counted = statisticsOf(table, "check-in");
    pressEnterIn(dialog);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(statisticsOf(statisticsTable(), "check-in"), counted);
    answerNextQuestion([](QMessageBox* box) { pressEnterIn(box); });
    find<QAbstractButton>("runStatisticsReset")->click();
    EXPECT_EQ(statisticsOf(table, "check-in"), counted);
    answerNextQuestion([](QMessageBox* box) {
        for (QAbstractButton* button : box->buttons())
            if (button->text() == "Reset")
                button->click();
    });
    find<QAbstractButton>("runStatisticsReset")->click();
    EXPECT_EQ(table->rowCount(), 0);
}

} // namespace
