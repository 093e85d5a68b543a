// File > Check Script...: the check of a script in a dialog, from which it runs.
#include "console/check_script_dialog.h"
#include "console/console_fixture.h"

#include <QDir>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class CheckScriptTest : public ConsoleFixture {
protected:
    QString scriptFile(const QByteArray& content, const QString& name = "check.txt") {
        QFile f(dir.filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return f.fileName();
    }
    CheckScriptDialog* openCheck(const QString& path) {
        op.filesToOpen = {path};
        press("mnuCheckScript");
        return window().findChild<CheckScriptDialog*>("checkScriptDialog");
    }
    QTableWidget* table() { return find<QTableWidget>("checkScriptTable"); }
    QString summary() { return find<QLabel>("checkScriptSummary")->text(); }
};

TEST_F(CheckScriptTest, ShowsTheRowsAndMarksThoseWithWarnings) {
    // A NAM line two blanks short, and a last line that never plays.
    CheckScriptDialog* dialog = openCheck(scriptFile(
        "; check-in and names\r\nCHK1   101\r\nWAIT STS2   101 5\r\nNAM1 Smith                  "
        "101\r\nNAM2 Jones                101\r\nMW 1   101\r\nCHK0   101\r\n"));
    ASSERT_TRUE(dialog && dialog->isVisible());
    ASSERT_EQ(table()->rowCount(), 5);
    EXPECT_EQ(table()->item(0, 0)->text().trimmed(), "2:1");
    EXPECT_EQ(table()->item(3, 1)->text(), "NAM2");
    EXPECT_TRUE(table()->item(3, 2)->text().contains("room 27-31 \"101\\x0D\\x0A\""))
        << table()->item(3, 2)->text().toStdString();
    // Unmarked, warned, and the row where the run stops.
    EXPECT_EQ(table()->item(2, 0)->background().style(), Qt::NoBrush);
    EXPECT_TRUE(table()->item(3, 0)->text().startsWith("!"));
    EXPECT_NE(table()->item(3, 0)->background().style(), Qt::NoBrush);
    EXPECT_TRUE(table()->item(3, 0)->toolTip().contains("NAM2 fills columns 1-31"));
    EXPECT_TRUE(table()->item(4, 0)->text().startsWith("X 6:3"));
    auto* findings = find<QListWidget>("checkScriptFindings");
    QStringList texts;
    for (int i = 0; i < findings->count(); ++i)
        texts << findings->item(i)->text().section(':', 0, 1);
    EXPECT_EQ(texts,
              QStringList({"line 1: note", "line 5: warning", "line 6: stop", "line 7: warning"}));
    EXPECT_TRUE(summary().contains("2 warning(s); the run stops as unrecognised"))
        << summary().toStdString();
    // The guide's picture of the dialog.
    if (const QString folder = qEnvironmentVariable("LARKSPUR_SCREENSHOT_DIR"); !folder.isEmpty()) {
        dialog->resize(1100, 460);
        dialog->grab().save(QDir(folder).filePath(QStringLiteral("images/check-script.png")));
    }
}

TEST_F(CheckScriptTest, JudgesTheScriptInTheWindowsErrorMode) {
    // Without Error Mode a wrong wake-up time logs and sends nothing; with it, it goes out.
    const QString path = scriptFile("CHK1   101\r\nWKP0799  101\r\n;\r\n");
    ASSERT_TRUE(openCheck(path));
    EXPECT_TRUE(table()->item(1, 0)->toolTip().contains("the run logs \"Invalid Time!\""));
    press("chk_error");
    openCheck(path);
    EXPECT_FALSE(table()->item(1, 0)->text().startsWith("!"));
    EXPECT_TRUE(summary().contains("clean: every command plays as written"));
}

TEST_F(CheckScriptTest, ItsRunButtonFollowsRunScriptAndRunsTheCheckedScript) {
    pbxAcknowledges();
    const QString checked = scriptFile("CHK1   101\r\n;\r\n");
    const QByteArray checkIn("\x02"
                             "CHK1   101\x03");
    CheckScriptDialog* dialog = openCheck(checked);
    ASSERT_TRUE(dialog);
    auto* run = find<QPushButton>("checkScriptRun");
    EXPECT_FALSE(run->isEnabled()) << "not connected: Run Script is disabled too";
    press("cmd_connect");
    EXPECT_TRUE(run->isEnabled());
    // Another script runs from the window: the open dialog's button goes dead with Run Script,
    // and a press on it starts nothing inside the running script.
    bool enabledDuringRun = true;
    pump.schedule(500, [&] {
        enabledDuringRun = run->isEnabled();
        run->click();
    });
    tcp.written.clear();
    op.filesToOpen = {scriptFile("CHK0   101\r\n;\r\n", "other.txt")};
    press("Xtest");
    EXPECT_FALSE(enabledDuringRun);
    EXPECT_FALSE(tcp.written.contains(checkIn));
    EXPECT_TRUE(run->isEnabled()) << "the run is over";
    dialog = openCheck(checked);
    tcp.written.clear();
    pressEnterIn(dialog);
    EXPECT_FALSE(dialog->isVisible()) << "Enter closes";
    EXPECT_TRUE(tcp.written.isEmpty()) << "and runs nothing";
    dialog = openCheck(checked);
    op.notices.clear();
    run->click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(tcp.written.contains(checkIn));
    EXPECT_EQ(op.notices, QStringList{"Script file completed"});
    press("cmd_disconnect");
    EXPECT_FALSE(run->isEnabled()) << "disconnected, as Run Script";
}

TEST_F(CheckScriptTest, AnUnreadableScriptIsANotice) {
    EXPECT_FALSE(openCheck(dir.filePath("missing.txt")));
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices[0].startsWith("Cannot read script file")) << op.notices[0];
}

} // namespace
