// File > Check Script...: the check of a script in a dialog, from which it runs.
#include "console/check_script_dialog.h"
#include "console/console_fixture.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class CheckScriptTest : public ConsoleFixture {
protected:
    QString scriptFile(const QByteArray& content,
                       const QString& name = QStringLiteral("check.txt")) {
        const QString path = dir.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path;
    }
    CheckScriptDialog* openCheck(const QString& path) {
        op.filesToOpen = {path};
        find<QAction>("mnuCheckScript")->trigger();
        return window().findChild<CheckScriptDialog*>("checkScriptDialog");
    }
};

// A NAM line two blanks short, and a last line that never plays.
const QByteArray shortName = "; check-in and names\r\nCHK1   101\r\nWAIT STS2   101 5\r\n"
                             "NAM1 Smith                  101\r\nNAM2 Jones                101\r\n"
                             "MW 1   101\r\nCHK0   101\r\n";

TEST_F(CheckScriptTest, ShowsTheRowsAndMarksThoseWithWarnings) {
    CheckScriptDialog* dialog = openCheck(scriptFile(shortName));
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(dialog->isVisible());
    auto* table = dialog->findChild<QTableWidget*>("checkScriptTable");
    ASSERT_EQ(table->rowCount(), 5);
    EXPECT_EQ(table->item(0, 0)->text().trimmed(), "2:1");
    EXPECT_EQ(table->item(3, 1)->text(), "NAM2");
    EXPECT_TRUE(table->item(3, 2)->text().contains("room 27-31 \"101\\x0D\\x0A\""))
        << table->item(3, 2)->text().toStdString();
    // Unmarked, warned, and the row where the run stops.
    EXPECT_EQ(table->item(2, 0)->background().style(), Qt::NoBrush);
    EXPECT_TRUE(table->item(3, 0)->text().startsWith("!"));
    EXPECT_NE(table->item(3, 0)->background().style(), Qt::NoBrush);
    EXPECT_TRUE(table->item(3, 0)->toolTip().contains("NAM2 fills columns 1-31"));
    EXPECT_TRUE(table->item(4, 0)->text().startsWith("X 6:3"));

    auto* findings = dialog->findChild<QListWidget*>("checkScriptFindings");
    QStringList texts;
    for (int i = 0; i < findings->count(); ++i)
        texts << findings->item(i)->text().section(':', 0, 1);
    EXPECT_EQ(texts,
              QStringList({"line 1: note", "line 5: warning", "line 6: stop", "line 7: warning"}));
    const QString summary = dialog->findChild<QLabel*>("checkScriptSummary")->text();
    EXPECT_TRUE(summary.contains("2 warning(s); the run stops as unrecognised"))
        << summary.toStdString();

    // The guide's picture of the dialog.
    if (const QString dirName = qEnvironmentVariable("LARKSPUR_SCREENSHOT_DIR");
        !dirName.isEmpty()) {
        dialog->resize(1100, 460);
        dialog->grab().save(QDir(dirName).filePath(QStringLiteral("images/check-script.png")));
    }
}

TEST_F(CheckScriptTest, ShowsWhatTheTransactionsWillLogInTheWindowsErrorMode) {
    const QString path = scriptFile("CHK1   101\r\nWKP0799  101\r\n;\r\n");
    CheckScriptDialog* dialog = openCheck(path);
    ASSERT_TRUE(dialog);
    auto* table = dialog->findChild<QTableWidget*>("checkScriptTable");
    ASSERT_EQ(table->rowCount(), 2);
    EXPECT_TRUE(table->item(1, 0)->text().startsWith("!"));
    EXPECT_TRUE(table->item(1, 0)->toolTip().contains(
        "the run logs \"Invalid Time!\" then \"no valid room number\" and sends nothing"))
        << table->item(1, 0)->toolTip().toStdString();
    auto* findings = dialog->findChild<QListWidget*>("checkScriptFindings");
    EXPECT_TRUE(findings->item(0)->text().startsWith("line 2: warning: WKP0 time (columns 4-7)"))
        << findings->item(0)->text().toStdString();

    // In Error Mode the time goes out as it stands.
    find<QAbstractButton>("chk_error")->click();
    dialog = openCheck(path);
    EXPECT_FALSE(table->item(1, 0)->text().startsWith("!"));
    EXPECT_TRUE(dialog->findChild<QLabel*>("checkScriptSummary")
                    ->text()
                    .contains("clean: every command plays as written"));
}

TEST_F(CheckScriptTest, RunsTheCheckedScriptOnlyWhenRunScriptCould) {
    pbxAcknowledges();
    CheckScriptDialog* dialog = openCheck(scriptFile("CHK1   101\r\n;\r\n"));
    ASSERT_TRUE(dialog);
    auto* run = dialog->findChild<QPushButton*>("checkScriptRun");
    EXPECT_FALSE(run->isEnabled()); // not connected: Run Script is disabled too

    find<QAbstractButton>("cmd_connect")->click();
    dialog = openCheck(scriptFile("CHK1   101\r\n;\r\n"));
    ASSERT_TRUE(run->isEnabled());
    tcp.written.clear();
    pressEnterIn(dialog);
    EXPECT_FALSE(dialog->isVisible()) << "Enter closes";
    EXPECT_TRUE(tcp.written.isEmpty()) << "and runs nothing";
    dialog = openCheck(scriptFile("CHK1   101\r\n;\r\n"));
    run->click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(tcp.written.contains(QByteArray("\x02"
                                                "CHK1   101\x03")));
    EXPECT_TRUE(op.notices.contains("Script file completed"));
}

TEST_F(CheckScriptTest, ItsRunButtonFollowsRunScriptWhileItStaysOpen) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    const QString checked = scriptFile("CHK1   101\r\n;\r\n");
    CheckScriptDialog* dialog = openCheck(checked);
    ASSERT_TRUE(dialog);
    auto* run = dialog->findChild<QPushButton*>("checkScriptRun");
    ASSERT_TRUE(run->isEnabled());

    // Another script runs from the window: the open dialog's button goes dead with Run Script,
    // and a press on it starts nothing inside the running script.
    bool enabledDuringRun = true;
    pump.schedule(500, [&] {
        enabledDuringRun = run->isEnabled();
        run->click();
    });
    tcp.written.clear();
    op.filesToOpen = {scriptFile("CHK0   101\r\n;\r\n", QStringLiteral("other.txt"))};
    find<QAbstractButton>("Xtest")->click();
    EXPECT_FALSE(enabledDuringRun);
    EXPECT_FALSE(tcp.written.contains(QByteArray("\x02"
                                                 "CHK1   101\x03")));
    EXPECT_TRUE(run->isEnabled()) << "the run is over";

    find<QAbstractButton>("cmd_disconnect")->click();
    EXPECT_FALSE(run->isEnabled()) << "disconnected, as Run Script";
}

TEST_F(CheckScriptTest, AnUnreadableScriptIsANotice) {
    EXPECT_FALSE(openCheck(dir.filePath("missing.txt")));
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices[0].startsWith("Cannot read script file")) << op.notices[0];
}

} // namespace
