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

#include <functional>
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
    template <typename T> T* find(const char* name) {
        T* object = window->findChild<T*>(QLatin1String(name));
        EXPECT_TRUE(object) << name;
        return object;
    }
    void press(const char* name) { find<QAbstractButton>(name)->click(); }
    void choose(const char* menuEntry) { find<QAction>(menuEntry)->trigger(); }
    void type(const char* field, const char* text) {
        find<QLineEdit>(field)->clear();
        QTest::keyClicks(find<QLineEdit>(field), QLatin1String(text));
    }

    // What the views show a moment later, shown now.
    void showEverything() {
        find<TrafficView>("List1")->syncNow();
        find<WireTracePanel>("wireTraceDock")->model().sync();
        QCoreApplication::processEvents();
    }

    static void save(QWidget* shown, const char* picture) {
        const QString folder = qEnvironmentVariable("LARKSPUR_SCREENSHOT_DIR");
        if (!folder.isEmpty()) {
            EXPECT_TRUE(shown->grab().save(QDir(folder).filePath(QLatin1String(picture))))
                << picture;
        }
    }
};

struct Scene {
    const char* picture; // under docs/
    QSize size;          // the window's, as the picture shows it
    QStringList pbx;     // the simulator's options
    std::function<void(GuidePictures&)> play;
    const char* linkStatus;
};

const QStringList hotelPbx = {"--after", "CHK1", "0.5", "STS2   101",
                              "--after", "WKP",  "0.5", "MR 0001  101"};
const QStringList vmailPbx = {"--mode", "VMAIL", "--after",
                              "6",      "0.5",   "<STX>44001  0201<ETX><BCC>"};

void hotelDay(GuidePictures& g) {
    g.press("cmd_connect");
    g.type("txt_ls_pilot", "101");
    g.type("txt_suite_1", "102");
    g.type("txt_suite_2", "103");
    g.type("Text1", "Smith");
    g.type("txt_time", "0730");
    g.press("chk_linked_suite");
    g.press("chk_manual");
    for (const char* button :
         {"cmd_chk_in", "cmd_name_1", "cmd_wakeup", "cmd_msg_wait", "cmd_ste0"})
        g.press(button);
}

void vmailDay(GuidePictures& g, bool his) {
    g.choose("mnuVoiceMail");
    if (his)
        g.choose("mnu_HIS");
    g.press("cmd_connect");
    g.type("txt_ls_pilot", "4001");
    g.press("cmd_chk_in");
    g.type("txt_suite_1", "1234");
    g.press("cmd_xfer_name");
    if (!his)
        return;
    g.press("cmd_name_1");
    g.type("txt_department", "3");
    g.press("cmd_replace_name");
}

const Scene scenes[] = {
    {"console.png",
     {1332, 820},
     hotelPbx,
     [](GuidePictures& g) {
         g.press("cmd_connect");
         g.press("cmd_start_script");
         g.type("txt_suite_1", "101");
         g.type("Text1", "SMITH JOHN");
         g.press("chk_manual");
         g.press("cmd_chk_in");
         g.press("cmd_name_1");
     },
     "TCP 127.0.0.1:15374 connected"},
    {"console-vmail.png",
     {1280, 800},
     vmailPbx,
     [](GuidePictures& g) { vmailDay(g, false); },
     "TCP 127.0.0.1:15374 connected"},
    {"images/console-hotel.png", {1356, 820}, hotelPbx, hotelDay, "TCP 127.0.0.1:15374 connected"},
    {"images/console-vmail.png",
     {1280, 820},
     vmailPbx,
     [](GuidePictures& g) { vmailDay(g, true); },
     "TCP 127.0.0.1:15374 connected"},
    {"images/script-run.png",
     {1280, 820},
     {"--after", "CHK1", "1.5", "STS2   101", "--after", "WKP", "1.5", "MR 0001  101", "--after",
      "CHK0", "1.5", "<STX>RQINZ     <ETX>"},
     [](GuidePictures& g) {
         g.press("cmd_connect");
         g.op.filesToOpen = {QStringLiteral(LARKSPUR_SOURCE_DIR "/examples/hotel.txt")};
         g.press("Xtest");
         EXPECT_EQ(g.op.notices.value(g.op.notices.size() - 1), "Script file completed");
     },
     "TCP 127.0.0.1:15374 connected"},
    {"images/wire-trace.png",
     {1356, 1000},
     hotelPbx,
     [](GuidePictures& g) {
         g.choose("mnuWireTrace");
         g.press("cmd_connect");
         g.type("txt_suite_1", "101");
         g.type("Text1", "Smith");
         g.press("cmd_chk_in");
         g.press("cmd_name_1");
         g.press("cmd_disconnect");
     },
     "TCP 127.0.0.1:15374 closed"},
};

TEST_F(GuidePictures, TheWindowShowsItsStatusBarAndEveryControlAtTheGuidesSize) {
    for (const Scene& scene : scenes) {
        open(scene.pbx, scene.size);
        scene.play(*this);
        showEverything();
        EXPECT_TRUE(window->statusBar()->isVisible()) << scene.picture;
        EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), scene.linkStatus) << scene.picture;
        auto* controls = find<QScrollArea>("controlScroll");
        ASSERT_TRUE(controls) << scene.picture;
        EXPECT_FALSE(controls->horizontalScrollBar()->isVisible()) << scene.picture;
        EXPECT_FALSE(controls->verticalScrollBar()->isVisible()) << scene.picture;
        save(window.get(), scene.picture);
        window.reset();
    }
}

TEST_F(GuidePictures, TheDialogsAsTheGuideShowsThem) {
    open(hotelPbx);
    hotelDay(*this);
    // The PBX tells the room's status while the wait for it runs.
    type("txt_suite_1", "101");
    press("cmd_chk_in");
    Q_EMIT find<QComboBox>("cmb_wait")->textActivated("sts2");
    choose("mnuRunStatistics");
    auto* statistics = find<RunStatisticsDialog>("runStatisticsDialog");
    showEverything();
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
