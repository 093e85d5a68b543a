#include "console/console_fixture.h"
#include "console/control_binder.h"

#include <QAccessible>
#include <QClipboard>
#include <QDir>
#include <QGroupBox>
#include <QMouseEvent>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QWheelEvent>

using namespace larkspur;
using namespace larkspur::test;

namespace {

using MainWindowTest = ConsoleFixture;

QString spokenName(QWidget* widget) {
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

// The rules themselves are the control rules' tests; here, that every control is in the window
// under its name, spoken readably, and shows the rules' enabling, visibility and tick on every
// kind of widget, menu and menu entry as the operator moves the state.
TEST_F(MainWindowTest, EveryControlIsThereAndShowsTheControlRulesAsTheStateMoves) {
    EXPECT_EQ(window().objectName(), "PMS_FORM");
    pbxAcknowledges();
    // Hotel twice: Qt ticks and unticks a checkable entry by itself; the ticks stay the rules'.
    // The boxes keep their ticks while the modes hide and show them again.
    for (const char* step :
         {"", "chk_DTREnabled", "chk_NullDiscard", "Continuous", "chk_error", "chk_manual",
          "mnuVoiceMail", "mnuHotel", "mnuHotel", "cmd_connect", "cmd_disconnect"}) {
        SCOPED_TRACE(step);
        if (*step)
            press(step);
        const std::vector<ControlState> rules = controlStates(session.state());
        for (Control control : allControls()) {
            const ControlState& rule = rules[size_t(control)];
            const std::string name = controlName(control).toStdString();
            QObject* o = window().findChild<QObject*>(objectNameOf(controlName(control)));
            ASSERT_TRUE(o) << name;
            auto* menu = qobject_cast<QMenu*>(o);
            auto* entry = menu ? menu->menuAction() : qobject_cast<QAction*>(o);
            auto* widget = qobject_cast<QWidget*>(o);
            EXPECT_EQ(entry ? entry->isEnabled() : widget->isEnabled(), rule.enabled) << name;
            EXPECT_EQ(entry ? entry->isVisible() : !widget->isHidden(), rule.visible) << name;
            if (o->property("checkable").toBool()) {
                EXPECT_EQ(o->property("checked").toBool(), rule.checked) << name;
            }
            if (menu || !widget || widget->isHidden() || qobject_cast<QLabel*>(widget) ||
                qobject_cast<QGroupBox*>(widget))
                continue;
            const QString spoken = spokenName(widget);
            EXPECT_TRUE(!spoken.trimmed().isEmpty() && !spoken.contains(u'&'))
                << name << ": " << spoken.toStdString();
        }
    }
    EXPECT_TRUE(session.link().settings().dtrEnabled);
    // Captions on each kind, with the leading blanks and mnemonics the operators know.
    const std::pair<const char*, const char*> captions[] = {
        {"Credit_label", "    Credit"},
        {"cmd_grs", "&GRS"},
        {"fr_manual_mode", "Manual Mode Functions"},
        {"mnuPMS", "PMS Mode"},
        {"mnuVoiceMail", "Voice Mail"}};
    for (const auto& [name, caption] : captions) {
        QObject* o = find<QObject>(name);
        EXPECT_EQ(o->property(o->property("title").isValid() ? "title" : "text").toString(),
                  caption)
            << name;
    }
    // Each field and list is spoken by its own label, relabelled with the mode.
    const std::pair<const char*, const char*> labelled[] = {
        {"txt_ls_pilot", "Label4"},  {"txt_suite_1", "Label5"},      {"txt_suite_3", "Label7"},
        {"Text1", "Label10"},        {"txt_credit", "Credit_label"}, {"cmb_restrict", "Label11"},
        {"cmb_wait", "label_wait_1"}};
    for (const auto& [field, label] : labelled)
        EXPECT_EQ(spokenName(find<QWidget>(field)), find<QLabel>(label)->text()) << field;
    // A frame with nothing left to show goes too.
    press("mnuVoiceMail");
    EXPECT_EQ(spokenName(find<QWidget>("txt_suite_1")).trimmed(), "Passcode:");
    EXPECT_TRUE(find<QWidget>("cmd_wakeup")->parentWidget()->isHidden());
    press("mnuHotel");
    EXPECT_FALSE(find<QWidget>("cmd_wakeup")->parentWidget()->isHidden());
}

TEST_F(MainWindowTest, StoredSettingsChooseMenusLabelsAndStatus) {
    settings.setValue("Startup/PMSMode", "VMAIL");
    settings.setValue("Startup/ProtocolType", "HIS");
    settings.setValue("Startup/ConnectionType", "CommPort");
    settings.setValue("Startup/CommPortNumber", "/dev/ttyUSB0");
    for (const char* ticked : {"mnuVoiceMail", "mnu_HIS", "mnuCommport"})
        EXPECT_TRUE(find<QAction>(ticked)->isChecked()) << ticked;
    EXPECT_EQ(find<QAbstractButton>("cmd_name_1")->text(), "Query MW Status");
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), "serial /dev/ttyUSB0 closed");
    EXPECT_EQ(find<QLabel>("lbl_mode_status")->text(), "VMAIL mode, HIS protocol");
}

TEST_F(MainWindowTest, FieldsGoBothWaysHoweverTheyAreSetAndWithinTheirLength) {
    connectToPbx();
    auto* suite = find<QLineEdit>("txt_suite_1");
    const std::pair<const char*, std::function<void(const QString&)>> ways[] = {
        {"typing",
         [&](const QString& t) {
             suite->clear();
             QTest::keyClicks(suite, t);
         }},
        {"assistive technology",
         [&](const QString& t) {
             QAccessible::queryAccessibleInterface(suite)->setText(QAccessible::Value, t);
         }},
        {"paste",
         [&](const QString& t) {
             QApplication::clipboard()->setText(t);
             suite->selectAll();
             suite->paste();
         }},
    };
    int room = 101;
    for (const auto& [how, set] : ways) {
        tcp.written.clear();
        set(QString::number(room));
        press("cmd_chk_in");
        EXPECT_TRUE(tcp.written.contains(QByteArray(1, 2) + "CHK1   " + QByteArray::number(room++) +
                                         "\x03"))
            << how;
    }
    session.fields().setText(Field::txt_suite_1, "10");
    EXPECT_EQ(suite->text(), "10") << "the engine's cut shows";
    type("Text1", QString(30, u'N'));
    EXPECT_EQ(session.fields().text(Field::Text1), QString(25, u'N'));
    type("txt_location", "ABCDEFGHIJKL");
    EXPECT_EQ(session.fields().text(Field::txt_location), "ABCDEFGHIJ");
}

TEST_F(MainWindowTest, LostLinkShowsAndLeavesTheConsoleReadyToConnectAgain) {
    connectToPbx();
    tcp.loseLink("closed by the PBX");
    pump.processEvents();
    auto* status = find<QLabel>("lbl_link_status");
    auto* warning = find<QLabel>("lbl_link_warning");
    EXPECT_EQ(status->text(), "TCP 127.0.0.1:15374 lost: closed by the PBX");
    EXPECT_TRUE(find<QAbstractButton>("cmd_connect")->isEnabled());
    // A restriction chosen now reaches nobody, and the status bar says so beside the loss.
    type("txt_suite_1", "101");
    tcp.written.clear();
    Q_EMIT find<QComboBox>("cmb_restrict")->textActivated("local call");
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_EQ(warning->text(), "\u2014 Nothing was sent: the link is down");
    EXPECT_EQ(status->text(), "TCP 127.0.0.1:15374 lost: closed by the PBX");
    press("cmd_connect");
    EXPECT_EQ(status->text(), "TCP 127.0.0.1:15374 connected");
    EXPECT_EQ(warning->text(), "");
}

TEST_F(MainWindowTest, TheStatusBarFollowsARecordingAndSaysWhereItWent) {
    connectToPbx();
    auto* status = find<QLabel>("lbl_script_status");
    EXPECT_EQ(status->text(), "");
    press("cmd_start_script");
    EXPECT_EQ(status->text(), "\u2014 Recording: 0 lines");
    type("txt_suite_1", "101");
    press("cmd_chk_in");
    EXPECT_EQ(status->text(), "\u2014 Recording: 1 line");
    press("cmd_chk_out");
    EXPECT_EQ(status->text(), "\u2014 Recording: 2 lines");
    op.filesToSave = {dir.filePath("rec1.txt")};
    press("cmd_end_script");
    const QString saved = "\u2014 Script saved to " + dir.filePath("rec1.txt") +
                          " (2 lines); its last command will not be played unless a comment "
                          "line follows it";
    EXPECT_EQ(status->text(), saved);
    // Connecting again switches no recording off, so the notice stays.
    press("cmd_disconnect");
    press("cmd_connect");
    EXPECT_EQ(status->text(), saved);
}

TEST_F(MainWindowTest, TheOperatorSharesTheWidthBetweenControlsAndLogAndItIsRemembered) {
    window().resize(1024, 700);
    QCoreApplication::processEvents();
    auto* log = find<QWidget>("List1");
    const int before = log->width();
    // The operator drags the line between them 300 px to the left.
    QSplitterHandle* handle = find<QSplitter>("controlSplitter")->handle(1);
    const QPoint from(handle->width() / 2, handle->height() / 2);
    const QPoint to = from - QPoint(300, 0);
    QMouseEvent down(QEvent::MouseButtonPress, from, handle->mapToGlobal(from), Qt::LeftButton,
                     Qt::LeftButton, Qt::NoModifier);
    QMouseEvent drag(QEvent::MouseMove, to, handle->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QMouseEvent up(QEvent::MouseButtonRelease, to, handle->mapToGlobal(to), Qt::LeftButton,
                   Qt::NoButton, Qt::NoModifier);
    for (QMouseEvent* event : {&down, &drag, &up})
        QApplication::sendEvent(handle, event);
    QCoreApplication::processEvents();
    EXPECT_GE(log->width(), before + 250);
    EXPECT_GE(log->width(), 500) << "room for a whole line of the log";
    const int chosen = log->width();
    closeWindow();
    window().resize(1024, 700);
    QCoreApplication::processEvents();
    EXPECT_NEAR(find<QWidget>("List1")->width(), chosen, 2) << "the next window opens as left";
}

TEST_F(MainWindowTest, TabGoesFromThePilotThroughTheSuiteFields) {
    QApplication::setActiveWindow(&window());
    find<QWidget>("txt_ls_pilot")->setFocus();
    for (const char* next : {"txt_suite_1", "txt_suite_2", "txt_suite_3", "txt_suite_4"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), next);
    }
}

TEST_F(MainWindowTest, ButtonsAndListsReachTheSessionAndAWheelWithoutTheFocusChoosesNothing) {
    connectToPbx();
    type("txt_suite_1", "101");
    tcp.written.clear();
    press("cmd_ack");
    EXPECT_EQ(tcp.written, QList<QByteArray>{QByteArray(1, 6)});
    QApplication::setActiveWindow(&window());
    const auto turnWheel = [](QWidget* list) {
        const QPointF at(list->width() / 2.0, list->height() / 2.0);
        QWheelEvent down(at, list->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list, &down);
    };
    // The restriction sends, the expectation lists start a wait.
    const std::pair<const char*, const char*> lists[] = {{"cmb_restrict", "RST0   101"},
                                                         {"cmb_notify", "send notify for --> ack"},
                                                         {"cmb_wait", "waiting for --> ack"}};
    for (const auto& [name, acted] : lists) {
        auto* list = find<QComboBox>(name);
        find<QLineEdit>("txt_suite_1")->setFocus();
        const QString before = session.log().logText();
        turnWheel(list);
        EXPECT_FALSE(list->hasFocus()) << name;
        EXPECT_EQ(list->currentIndex(), -1) << name;
        EXPECT_EQ(session.log().logText(), before) << name;
        list->setFocus();
        turnWheel(list);
        EXPECT_EQ(list->currentIndex(), 0) << "with the focus the wheel chooses: " << name;
        EXPECT_TRUE(session.log().logText().mid(before.size()).contains(acted)) << name;
    }
    auto* restrict = find<QComboBox>("cmb_restrict");
    QTest::keyClick(restrict, Qt::Key_Down);
    QTest::keyClick(restrict, Qt::Key_Down);
    EXPECT_EQ(restrict->currentText(), "long distant call");
    EXPECT_TRUE(tcp.written.contains(QByteArray("\x02"
                                                "RST2   101\x03")));
}

TEST_F(MainWindowTest, ClosingDuringAWaitEndsTheWaitThenCloses) {
    tcp.acceptAfterMs = -1; // the PBX never accepts: Connect waits until stopped
    settings.setValue("Startup/Speed", "9600");
    press("mnuVoiceMail");
    pump.schedule(5000, [this] { window().close(); });
    press("cmd_connect");
    EXPECT_TRUE(window().isVisible()) << "the close waits for the operation to return";
    QCoreApplication::processEvents();
    EXPECT_FALSE(window().isVisible());
    EXPECT_FALSE(pump.stopRequested());
    EXPECT_TRUE(session.log().logText().endsWith("Disconnected...\r\n"));
    settings.sync();
    EXPECT_EQ(settings.value("Startup/PMSMode").toString(), "VMAIL");
    EXPECT_EQ(settings.value("Startup/Speed").toString(), "9600");
    EXPECT_EQ(settings.value("Startup/ConnectionType").toString(), "Telnet");
    const qint64 before = pump.elapsedMs();
    press("cmd_connect");
    EXPECT_EQ(pump.elapsedMs(), before) << "nothing starts once the window has closed";
}

TEST_F(MainWindowTest, ClosingWhenIdleDisconnectsPausesAndStores) {
    window();
    const qint64 before = pump.elapsedMs();
    window().close();
    EXPECT_FALSE(window().isVisible());
    EXPECT_GE(pump.elapsedMs() - before, 1000);
    settings.sync();
    EXPECT_EQ(settings.value("Startup/IP_Address").toString(), "127.0.0.1");
}

TEST_F(MainWindowTest, SettingsThatCannotBeStoredAreSaidAsTheWindowCloses) {
    // A folder where the settings file should be: nothing can be written there, even by root.
    QDir(dir.path()).mkdir("larkspur.ini");
    window().close();
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices.first().startsWith("The settings could not be saved to "))
        << op.notices.first().toStdString();
}

TEST_F(MainWindowTest, OpensWhollyInSightOnTheSmallestScreen) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    ASSERT_EQ(screen->availableGeometry(), QRect(0, 0, 1280, 800));
    EXPECT_TRUE(screen->availableGeometry().contains(window().frameGeometry()))
        << window().frameGeometry().width() << "x" << window().frameGeometry().height();
    EXPECT_TRUE(window().rect().contains(window().statusBar()->geometry()));
}

} // namespace
