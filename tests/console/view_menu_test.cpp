#include "console/console_fixture.h"
#include "console/run_statistics_dialog.h"
#include "console/wire_trace_panel.h"

#include <QMenuBar>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>
#include <QTableWidget>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ViewMenuTest : public ConsoleFixture {
protected:
    WireTraceModel& model() { return find<WireTracePanel>("wireTraceDock")->model(); }
    void connectAndCheckIn() {
        connectToPbx();
        type("txt_suite_1", "101");
        press("cmd_chk_in");
    }
    // Announces the rows and lets the view lay them out.
    void showNow() {
        model().sync();
        QCoreApplication::processEvents();
    }
    // The lines the panel's Save writes to `path`.
    QStringList saved(const QString& path) {
        op.filesToSave = {path};
        press("wireTraceSave");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        EXPECT_EQ(lines.takeLast(), "") << "every line ends";
        return lines;
    }
    QTableWidget* statisticsTable() {
        press("mnuRunStatistics");
        return find<RunStatisticsDialog>("runStatisticsDialog")
            ->findChild<QTableWidget*>("runStatisticsTable");
    }
    // The row of `type`, every cell but the type; empty when there is none.
    static QString statisticsOf(QTableWidget* table, const QString& type) {
        for (int row = 0; row < table->rowCount(); ++row) {
            QStringList cells;
            for (int column = 1; column < table->columnCount(); ++column)
                cells << table->item(row, column)->text();
            if (table->item(row, 0)->text() == type)
                return cells.join(u' ');
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
    EXPECT_FALSE(find<QWidget>("wireTraceDock")->isVisible());
    trace->trigger();
    EXPECT_TRUE(find<QWidget>("wireTraceDock")->isVisible());
    trace->trigger();
    EXPECT_FALSE(find<QWidget>("wireTraceDock")->isVisible());
    press("mnuRunStatistics");
    EXPECT_TRUE(find<QWidget>("runStatisticsDialog")->isVisible());
}

TEST_F(ViewMenuTest, SavesTheHandshakeAndTheLossBesideAnUntouchedLog) {
    connectAndCheckIn();
    pump.advance(3'600'000); // an hour of silence, then the PBX goes away
    tcp.loseLink("closed by the PBX");
    pump.processEvents();
    const QString path = dir.filePath("trace.txt");
    const QStringList lines = saved(path);
    QStringList withoutTime;
    for (const QString& line : lines)
        withoutTime << line.mid(13);
    ASSERT_EQ(withoutTime, QStringList({
                               "TX <ENQ>   | 05",
                               "RX <ACK>   | 06   ; ENQ answered in 10 ms (ACKed)",
                               "-- TCP 127.0.0.1:15374 connected",
                               "TX <ENQ>   | 05",
                               "RX <ACK>   | 06   ; ENQ answered in 10 ms (ACKed)",
                               "TX <STX>CHK1   101<ETX>   | 02 43 48 4B 31 20 20 20 31 30 31 03",
                               "RX <ACK>   | 06   ; frame ACKed in 10 ms",
                               "-- TCP 127.0.0.1:15374 lost: closed by the PBX",
                           }));
    EXPECT_TRUE(
        QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d ").match(lines.first()).hasMatch());
    EXPECT_EQ(lines.last().left(8), pump.currentDateTime().toString("HH:mm:ss"));
    const QString log = session.log().logText();
    EXPECT_FALSE(log.contains(QRegularExpression("[\\x02\\x06]|ACKed|:00\\.|closed by the PBX")))
        << log.toStdString();
    // An unanswered voice-mail bid and the operator's disconnect are marked too.
    press("mnuVoiceMail");
    tcp.onWrite = {};
    press("cmd_connect");
    press("cmd_disconnect");
    const QStringList later = saved(path);
    ASSERT_GE(later.size(), 2);
    EXPECT_TRUE(later[later.size() - 2].mid(13).startsWith("-- no answer"))
        << later[later.size() - 2].toStdString();
    EXPECT_EQ(later.last().mid(13), "-- TCP 127.0.0.1:15374 closed by the console");
    // Cancelled, nothing is written; refused, the operator is told.
    QFile::remove(path);
    op.filesToSave = {};
    press("wireTraceSave");
    EXPECT_FALSE(QFile::exists(path));
    op.filesToSave = {dir.filePath("missing/trace.txt")};
    press("wireTraceSave");
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices[0].startsWith("Cannot write " + dir.filePath("missing/trace.txt")));
}

TEST_F(ViewMenuTest, FollowsTheNewestRowUntilPausedWhileTheTraceRecordsAndClears) {
    press("mnuWireTrace");
    connectAndCheckIn();
    for (int i = 0; i < 20; ++i)
        press("cmd_chk_in");
    showNow();
    QScrollBar* bar = find<QTableView>("wireTraceView")->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    auto* pause = find<QAbstractButton>("wireTracePause");
    pause->click();
    const int rows = model().rowCount();
    bar->setValue(0);
    press("cmd_chk_in");
    showNow();
    EXPECT_EQ(model().rowCount(), rows);
    EXPECT_EQ(bar->value(), 0) << "paused, the operator reads where they scrolled";
    pause->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(model().rowCount(), rows + 4) << "the trace went on recording; resuming catches up";
    EXPECT_EQ(bar->value(), bar->maximum());
    press("wireTraceClear");
    EXPECT_EQ(model().rowCount(), 0);
    press("cmd_chk_in");
    model().sync();
    EXPECT_EQ(model().index(0, WireTraceModel::Readable).data().toString(), "<ENQ>")
        << "recording goes on after a clear";
}

TEST_F(ViewMenuTest, StatisticsCountEachExchangeLiveUntilReset) {
    connectAndCheckIn();
    QTableWidget* table = statisticsTable();
    // sent, acked, refused, timed out, answer ms min, median, max
    EXPECT_EQ(statisticsOf(table, "check-in"), "1 1 0 0 10 10 10");
    EXPECT_EQ(statisticsOf(table, "ENQ"), "2 2 0 0 10 10 10");
    tcp.onWrite = [this](const QByteArray& bytes) {
        tcp.deliver(QByteArray(1, bytes.startsWith('\x02') ? 21 : 6), 30);
    };
    press("cmd_chk_in");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return statisticsOf(table, "check-in").startsWith("6 "); }, 5000))
        << "a NAKed frame goes out five times";
    const QString counted = "6 1 5 0 10 30 30";
    EXPECT_EQ(statisticsOf(table, "check-in"), counted);
    // The PBX tells the room's status 400 ms into a wait; the operator reads the box for 8 s,
    // which is not the wait's time.
    tcp.onWrite = {};
    tcp.deliver("\x02STS2   101\x03", 400);
    op.onNotify = [this](const QString&) { pump.advance(8000); };
    Q_EMIT find<QComboBox>("cmb_wait")->textActivated("sts2");
    EXPECT_EQ(op.notices, QStringList({"successfully received --> sts2"}));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return statisticsOf(table, "wait sts2") == "1 1 0 0 400 400 400"; }, 5000))
        << statisticsOf(table, "wait sts2").toStdString();
    // Enter closes the dialog, and Reset asks first: Enter there keeps every count.
    auto* dialog = find<RunStatisticsDialog>("runStatisticsDialog");
    pressEnterIn(dialog);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(statisticsOf(statisticsTable(), "check-in"), counted);
    answerNextQuestion([](QMessageBox* box) { pressEnterIn(box); });
    press("runStatisticsReset");
    EXPECT_EQ(statisticsOf(table, "check-in"), counted);
    answerNextQuestion([](QMessageBox* box) {
        for (QAbstractButton* button : box->buttons())
            if (button->text() == "Reset")
                button->click();
    });
    press("runStatisticsReset");
    EXPECT_EQ(table->rowCount(), 0);
}

} // namespace
