// The scenes of the guide's pictures, played against the built-in simulator: at the size the
// guide shows it, the window shows its status bar and every control without scrolling. With
// LARKSPUR_SCREENSHOT_DIR set (scripts/screenshots sets it to docs/), each scene is also saved
// as the guide's picture.
#include "assembly/dry_run.h"
#include "common/recording_operator.h"
#include "console/ip_control.h"
#include "console/main_window.h"
#include "console/run_statistics_dialog.h"
#include "console/telnet_dialog.h"
#include "console/traffic_view.h"
#include "console/wire_trace_panel.h"
#include "sim/sim_options.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class GuidePictures : public ::testing::Test {
public:
    RecordingOperator op;
    QTemporaryDir dir;
    QSettings settings{dir.filePath(QStringLiteral("larkspur.ini")), QSettings::IniFormat};
    std::unique_ptr<DryRunAssembly> console;
    std::unique_ptr<MainWindow> window;
    // The window over the simulator started with `pbx`.
    void open(const QStringList& pbx, QSize size = QSize(1280, 800)) {
        const sim::ParsedArguments parsed = sim::parseSimArguments(pbx);
        ASSERT_TRUE(parsed.options) << parsed.error.toStdString();
        console = std::make_unique<DryRunAssembly>(op, 10'000, *parsed.options);
        window = std::make_unique<MainWindow>(*console, settings);
        window->resize(size);
        window->show();
    }
    template <typename T> T* find(const QString& name) {
        T* object = window->findChild<T*>(name);
        EXPECT_TRUE(object) << name.toStdString();
        return object;
    }
    // Each step presses a button or menu entry by name, or types "field=text".
    void play(const QStringList& steps) {
        for (const QString& step : steps) {
            if (step.contains(u'=')) {
                auto* field = find<QLineEdit>(step.section(u'=', 0, 0));
                field->clear();
                QTest::keyClicks(field, step.section(u'=', 1));
            } else if (auto* action = window->findChild<QAction*>(step)) {
                action->trigger();
            } else {
                find<QAbstractButton>(step)->click();
            }
        }
        // What the views show a moment later, shown now.
        find<TrafficView>("List1")->syncNow();
        find<WireTracePanel>("wireTraceDock")->model().sync();
        QCoreApplication::processEvents();
    }
    static void save(QWidget* shown, const char* picture) {
        if (const QString folder = qEnvironmentVariable("LARKSPUR_SCREENSHOT_DIR");
            !folder.isEmpty()) {
            EXPECT_TRUE(shown->grab().save(QDir(folder).filePath(QLatin1String(picture))))
                << picture;
        }
    }
};

const QStringList hotelPbx = {"--after", "CHK1", "0.5", "STS2   101",
                              "--after", "WKP",  "0.5", "MR 0001  101"};
const QStringList vmailPbx = {"--mode", "VMAIL", "--after",
                              "6",      "0.5",   "<STX>44001  0201<ETX><BCC>"};
const QStringList hotelDay = {
    "cmd_connect",   "txt_ls_pilot=101", "txt_suite_1=102", "txt_suite_2=103", "Text1=Smith",
    "txt_time=0730", "chk_linked_suite", "chk_manual",      "cmd_chk_in",      "cmd_name_1",
    "cmd_wakeup",    "cmd_msg_wait",     "cmd_ste0"};
const QStringList vmailDay = {"mnuVoiceMail", "cmd_connect",      "txt_ls_pilot=4001",
                              "cmd_chk_in",   "txt_suite_1=1234", "cmd_xfer_name"};

// Each scene is saved as `picture` under docs/, at the window's size the picture shows.
const struct {
    const char* picture;
    QSize size;
    QStringList pbx, steps, notices;
} scenes[] = {{"console.png",
               {1332, 820},
               hotelPbx,
               {"cmd_connect", "cmd_start_script", "txt_suite_1=101", "Text1=SMITH JOHN",
                "chk_manual", "cmd_chk_in", "cmd_name_1"},
               {}},
              {"console-vmail.png", {1280, 800}, vmailPbx, vmailDay, {}},
              {"images/console-hotel.png", {1356, 820}, hotelPbx, hotelDay, {}},
              {"images/console-vmail.png",
               {1280, 820},
               vmailPbx,
               QStringList{"mnu_HIS"} + vmailDay +
                   QStringList{"cmd_name_1", "txt_department=3", "cmd_replace_name"},
               {}},
              {"images/script-run.png",
               {1280, 820},
               {"--after", "CHK1", "1.5", "STS2   101", "--after", "WKP", "1.5", "MR 0001  101",
                "--after", "CHK0", "1.5", "<STX>RQINZ     <ETX>"},
               {"cmd_connect", "Xtest"}, // plays the hotel example
               {"successfully received --> sts2", "successfully received --> mr",
                "successfully received --> rti", "Script file completed"}},
              {"images/wire-trace.png",
               {1356, 1000},
               hotelPbx,
               {"mnuWireTrace", "cmd_connect", "txt_suite_1=101", "Text1=Smith", "cmd_chk_in",
                "cmd_name_1", "cmd_disconnect"},
               {}}};

TEST_F(GuidePictures, TheWindowShowsItsStatusBarAndEveryControlAtTheGuidesSize) {
    for (const auto& scene : scenes) {
        SCOPED_TRACE(scene.picture);
        op.notices.clear();
        op.filesToOpen = {QStringLiteral(LARKSPUR_SOURCE_DIR "/examples/hotel.txt")};
        open(scene.pbx, scene.size);
        play(scene.steps);
        EXPECT_EQ(op.notices, scene.notices);
        const QString status = find<QLabel>("lbl_link_status")->text();
        EXPECT_TRUE(status == "TCP 127.0.0.1:15374 connected" ||
                    status == "TCP 127.0.0.1:15374 closed")
            << status.toStdString();
        EXPECT_TRUE(window->statusBar()->isVisible());
        auto* controls = find<QScrollArea>("controlScroll");
        EXPECT_FALSE(controls->horizontalScrollBar()->isVisible());
        EXPECT_FALSE(controls->verticalScrollBar()->isVisible());
        save(window.get(), scene.picture);
        window.reset();
    }
}

TEST_F(GuidePictures, TheDialogsAsTheGuideShowsThem) {
    open(hotelPbx);
    // The PBX tells the room's status while the wait for it runs.
    play(hotelDay + QStringList{"txt_suite_1=101", "cmd_chk_in"});
    Q_EMIT find<QComboBox>("cmb_wait")->textActivated("sts2");
    play({"mnuRunStatistics"});
    auto* statistics = find<RunStatisticsDialog>("runStatisticsDialog");
    EXPECT_EQ(statistics->findChild<QTableWidget*>("runStatisticsTable")->item(0, 0)->text(),
              "ENQ");
    save(statistics, "images/run-statistics.png");
    TelnetDialog telnet(console->session, window.get());
    telnet.load();
    telnet.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(telnet.findChild<IPControl*>("IPControl1")->Address(), "127.0.0.1");
    save(&telnet, "images/telnet-dialog.png");
}

} // namespace
