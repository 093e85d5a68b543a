#include "console/console_fixture.h"
#include "console/control_binder.h"
#include "transactions/control_rules.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTest>
#include <QWheelEvent>

#include <functional>

using namespace larkspur;
using namespace larkspur::test;

namespace {

QString captionOf(QObject* o) {
    if (auto* menu = qobject_cast<QMenu*>(o))
        return menu->title();
    if (auto* button = qobject_cast<QAbstractButton*>(o))
        return button->text();
    if (auto* label = qobject_cast<QLabel*>(o))
        return label->text();
    if (auto* frame = qobject_cast<QGroupBox*>(o))
        return frame->title();
    if (auto* action = qobject_cast<QAction*>(o))
        return action->text();
    return QString();
}

using MainWindowTest = ConsoleFixture;

TEST_F(MainWindowTest, EveryControlIsThereUnderItsNameWithItsCaption) {
    window();
    for (Control control : allControls()) {
        const QString name = controlName(control);
        QObject* o = window().findChild<QObject*>(objectNameOf(name));
        ASSERT_TRUE(o) << name.toStdString();
        EXPECT_EQ(captionOf(o), controlStates(session.state())[size_t(control)].caption)
            << name.toStdString();
    }
    EXPECT_EQ(window().objectName(), "PMS_FORM");
    EXPECT_TRUE(find<QLabel>("label_wait_1"));
    EXPECT_TRUE(find<QLabel>("lbl_department_0"));
    EXPECT_TRUE(find<QWidget>("List1"));
    // Leading blanks, odd spellings and mnemonics as the operators know them.
    EXPECT_EQ(find<QLabel>("Credit_label")->text(), "    Credit");
    EXPECT_EQ(find<QLabel>("Label11")->text(), "  Station  Restrict");
    EXPECT_EQ(find<QLabel>("label_wait_1")->text(), "  Wait:");
    EXPECT_EQ(find<QAbstractButton>("cmd_grs")->text(), "&GRS");
    EXPECT_EQ(find<QAbstractButton>("cmd_ste_explain")->text(), "ste explaination");
    EXPECT_EQ(find<QComboBox>("cmb_restrict")->itemText(2), "long distant call");
}

TEST_F(MainWindowTest, StartsDisconnectedWithTheOptionalFramesHidden) {
    window();
    EXPECT_FALSE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
    EXPECT_FALSE(find<QAbstractButton>("Xtest")->isEnabled());
    EXPECT_TRUE(find<QAbstractButton>("cmd_connect")->isEnabled());
    EXPECT_TRUE(find<QMenu>("mnuPMS")->menuAction()->isEnabled());
    EXPECT_TRUE(find<QGroupBox>("fr_Linked_suite")->isHidden());
    EXPECT_TRUE(find<QGroupBox>("fr_manual_mode")->isHidden());
    EXPECT_EQ(find<QComboBox>("cmb_wait")->currentIndex(), -1) << "nothing chosen yet";
    EXPECT_EQ(find<QComboBox>("cmb_notify")->count(), ScriptEngine::expectationItems().size());
}

TEST_F(MainWindowTest, StoredSettingsChooseMenusLabelsAndStatus) {
    settings.setValue("Startup/PMSMode", "VMAIL");
    settings.setValue("Startup/ProtocolType", "HIS");
    settings.setValue("Startup/ConnectionType", "CommPort");
    settings.setValue("Startup/CommPortNumber", "/dev/ttyUSB0");
    window();
    EXPECT_TRUE(find<QAction>("mnuVoiceMail")->isChecked());
    EXPECT_FALSE(find<QAction>("mnuHotel")->isChecked());
    EXPECT_TRUE(find<QAction>("mnu_HIS")->isChecked());
    EXPECT_TRUE(find<QAction>("mnuCommport")->isChecked());
    EXPECT_FALSE(find<QAction>("mnuTelnet")->isChecked());
    EXPECT_EQ(find<QAbstractButton>("cmd_name_1")->text(), "Query MW Status");
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), "serial /dev/ttyUSB0 closed");
    EXPECT_EQ(find<QLabel>("lbl_mode_status")->text(), "VMAIL mode, HIS protocol");
}

TEST_F(MainWindowTest, ModeMenusRelabelAndKeepTheirTicks) {
    window();
    find<QAction>("mnuVoiceMail")->trigger();
    EXPECT_EQ(find<QAbstractButton>("cmd_name_1")->text(), "Query MW Status");
    EXPECT_EQ(find<QLabel>("Label5")->text(), "Passcode: ");
    for (const char* hidden : {"cmd_loc", "cmd_wakeup", "cmb_restrict", "Text1", "txt_time",
                               "chk_DTREnabled", "lbl_department_0", "label_wait_0"})
        EXPECT_TRUE(find<QWidget>(hidden)->isHidden()) << hidden;
    EXPECT_FALSE(find<QWidget>("lbl_department_1")->isHidden());
    EXPECT_TRUE(find<QWidget>("cmd_wakeup")->parentWidget()->isHidden())
        << "a group with nothing left to show goes too";
    EXPECT_EQ(find<QLabel>("lbl_mode_status")->text(), "VMAIL mode, HYATT protocol");

    find<QAction>("mnuHotel")->trigger();
    EXPECT_EQ(find<QLabel>("Label6")->text(), "xfer ext./Suite Pilot 2:");
    EXPECT_FALSE(find<QWidget>("cmd_wakeup")->isHidden());
    EXPECT_FALSE(find<QWidget>("cmd_wakeup")->parentWidget()->isHidden());

    // Qt ticks and unticks a checkable entry by itself; the ticks must stay the session's.
    find<QAction>("mnuHotel")->trigger();
    EXPECT_TRUE(find<QAction>("mnuHotel")->isChecked());
    EXPECT_FALSE(find<QAction>("mnuVoiceMail")->isChecked());
    EXPECT_FALSE(find<QAction>("mnu_HIS")->isEnabled());
}

TEST_F(MainWindowTest, FieldsGoBothWays) {
    auto* suite = find<QLineEdit>("txt_suite_1");
    QTest::keyClicks(suite, "101");
    EXPECT_EQ(session.fields().text(Field::txt_suite_1), "101");

    session.fields().setText(Field::txt_ls_pilot, "12345");
    EXPECT_EQ(find<QLineEdit>("txt_ls_pilot")->text(), "12345");
    session.fields().setText(Field::txt_suite_1, "10");
    EXPECT_EQ(suite->text(), "10") << "the engine's cut shows";

    auto* name = find<QLineEdit>("Text1");
    QTest::keyClicks(name, QString(30, u'N'));
    EXPECT_EQ(session.fields().text(Field::Text1), QString(25, u'N'));
    QTest::keyClicks(find<QLineEdit>("txt_location"), "ABCDEFGHIJKL");
    EXPECT_EQ(session.fields().text(Field::txt_location), "ABCDEFGHIJ");
}

TEST_F(MainWindowTest, FieldsSetWithoutTypingReachTheSession) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    auto* suite = find<QLineEdit>("txt_suite_1");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(suite);
    ASSERT_TRUE(accessible && accessible->editableTextInterface());
    const std::pair<const char*, std::function<void(const QString&)>> ways[] = {
        {"assistive technology",
         [&](const QString& t) { accessible->setText(QAccessible::Value, t); }},
        {"editable text",
         [&](const QString& t) {
             accessible->editableTextInterface()->replaceText(0, suite->text().size(), t);
         }},
        {"paste",
         [&](const QString& t) {
             QApplication::clipboard()->setText(t);
             suite->selectAll();
             suite->paste();
         }},
        {"automation", [&](const QString& t) { suite->setText(t); }},
    };
    int room = 101;
    for (const auto& [how, set] : ways) {
        tcp.written.clear();
        set(QString::number(room));
        EXPECT_EQ(session.fields().text(Field::txt_suite_1), QString::number(room)) << how;
        find<QAbstractButton>("cmd_chk_in")->click();
        EXPECT_TRUE(tcp.written.contains("\x02"
                                         "CHK1   " +
                                         QByteArray::number(room) + "\x03"))
            << how;
        ++room;
    }
}

TEST_F(MainWindowTest, EveryControlHasAReadableAccessibleName) {
    window();
    for (const char* mode : {"mnuVoiceMail", "mnuHotel"}) {
        find<QAction>(mode)->trigger();
        for (Control control : allControls()) {
            const QString name = controlName(control);
            auto* widget = qobject_cast<QWidget*>(window().findChild<QObject*>(objectNameOf(name)));
            if (!widget || widget->isHidden() || qobject_cast<QLabel*>(widget) ||
                qobject_cast<QGroupBox*>(widget))
                continue;
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
            ASSERT_TRUE(accessible) << name.toStdString();
            const QString spoken = accessible->text(QAccessible::Name);
            EXPECT_FALSE(spoken.trimmed().isEmpty()) << mode << " " << name.toStdString();
            EXPECT_FALSE(spoken.contains(u'&')) << name.toStdString() << spoken.toStdString();
        }
    }
    // Each field and list is spoken by its own label, relabelled with the mode.
    const std::pair<const char*, const char*> labelled[] = {
        {"txt_ls_pilot", "Label4"},  {"txt_suite_1", "Label5"},      {"txt_suite_3", "Label7"},
        {"Text1", "Label10"},        {"txt_credit", "Credit_label"}, {"cmb_restrict", "Label11"},
        {"cmb_wait", "label_wait_1"}};
    for (const auto& [field, label] : labelled)
        EXPECT_EQ(
            QAccessible::queryAccessibleInterface(find<QWidget>(field))->text(QAccessible::Name),
            find<QLabel>(label)->text())
            << field;
    find<QAction>("mnuVoiceMail")->trigger();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(find<QLineEdit>("txt_suite_1"))
                  ->text(QAccessible::Name)
                  .trimmed(),
              "Passcode:");
}

TEST_F(MainWindowTest, LostLinkShowsAndLeavesTheConsoleReadyToConnectAgain) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    ASSERT_TRUE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
    tcp.loseLink("closed by the PBX");
    pump.processEvents();
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(),
              "TCP 127.0.0.1:15374 lost: closed by the PBX");
    EXPECT_FALSE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
    EXPECT_FALSE(find<QAbstractButton>("cmd_disconnect")->isEnabled());
    EXPECT_TRUE(find<QAbstractButton>("cmd_connect")->isEnabled());
    EXPECT_TRUE(find<QMenu>("mnuConnection")->menuAction()->isEnabled());

    // A restriction chosen now reaches nobody, and the status bar says so beside the loss.
    QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
    tcp.written.clear();
    Q_EMIT find<QComboBox>("cmb_restrict")->textActivated("local call");
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_EQ(find<QLabel>("lbl_link_warning")->text(),
              "\u2014 Nothing was sent: the link is down");
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(),
              "TCP 127.0.0.1:15374 lost: closed by the PBX");

    find<QAbstractButton>("cmd_connect")->click();
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), "TCP 127.0.0.1:15374 connected");
    EXPECT_EQ(find<QLabel>("lbl_link_warning")->text(), "");
    EXPECT_TRUE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
}

TEST_F(MainWindowTest, TheStatusBarFollowsARecordingAndSaysWhereItWent) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    auto* status = find<QLabel>("lbl_script_status");
    ASSERT_TRUE(status);
    EXPECT_EQ(status->text(), "");
    find<QAbstractButton>("cmd_start_script")->click();
    EXPECT_EQ(status->text(), "\u2014 Recording: 0 lines");
    QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
    find<QAbstractButton>("cmd_chk_in")->click();
    EXPECT_EQ(status->text(), "\u2014 Recording: 1 line");
    find<QAbstractButton>("cmd_chk_out")->click();
    EXPECT_EQ(status->text(), "\u2014 Recording: 2 lines");

    op.filesToSave = {dir.filePath("rec1.txt")};
    find<QAbstractButton>("cmd_end_script")->click();
    EXPECT_EQ(status->text(), "\u2014 Script saved to " + dir.filePath("rec1.txt") +
                                  " (2 lines); its last command will not be played unless a "
                                  "comment line follows it");
    // Connecting again switches no recording off, so the notice stays.
    find<QAbstractButton>("cmd_disconnect")->click();
    find<QAbstractButton>("cmd_connect")->click();
    EXPECT_TRUE(status->text().startsWith("\u2014 Script saved to "));
}

TEST_F(MainWindowTest, TheOperatorSharesTheWidthBetweenControlsAndLogAndItIsRemembered) {
    window().resize(1024, 700);
    QCoreApplication::processEvents();
    auto* split = find<QSplitter>("controlSplitter");
    ASSERT_TRUE(split);
    auto* log = find<QWidget>("List1");
    const int before = log->width();
    // The operator drags the line between them 300 px to the left.
    QSplitterHandle* handle = split->handle(1);
    const QPoint from(handle->width() / 2, handle->height() / 2);
    const QPoint to = from - QPoint(300, 0);
    QMouseEvent press(QEvent::MouseButtonPress, from, handle->mapToGlobal(from), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QMouseEvent move(QEvent::MouseMove, to, handle->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, to, handle->mapToGlobal(to), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    for (QMouseEvent* event : {&press, &move, &release})
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

TEST_F(MainWindowTest, ConnectedLocksTheLinkMenusAndShowsTheLink) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    EXPECT_TRUE(tcp.isOpen());
    for (const char* menu : {"mnuPMS", "mnu_protocal", "mnuConnection"})
        EXPECT_FALSE(find<QMenu>(menu)->menuAction()->isEnabled()) << menu;
    EXPECT_TRUE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
    EXPECT_FALSE(find<QAbstractButton>("cmd_end_script")->isEnabled());
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), "TCP 127.0.0.1:15374 connected");

    find<QAbstractButton>("cmd_disconnect")->click();
    for (const char* menu : {"mnuPMS", "mnu_protocal", "mnuConnection"})
        EXPECT_TRUE(find<QMenu>(menu)->menuAction()->isEnabled()) << menu;
    EXPECT_FALSE(find<QAbstractButton>("cmd_chk_in")->isEnabled());
    EXPECT_EQ(find<QLabel>("lbl_link_status")->text(), "TCP 127.0.0.1:15374 closed");
}

TEST_F(MainWindowTest, ButtonsReachTheSession) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    tcp.written.clear();
    QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
    find<QAbstractButton>("cmd_chk_in")->click();
    EXPECT_TRUE(tcp.written.contains(QByteArray("\x02"
                                                "CHK1   101\x03")));

    tcp.written.clear();
    find<QAbstractButton>("cmd_ack")->click();
    EXPECT_EQ(tcp.written, QList<QByteArray>{QByteArray(1, 6)});

    auto* restrict = find<QComboBox>("cmb_restrict");
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(restrict, Qt::Key_Down);
    EXPECT_EQ(restrict->currentText(), "long distant call");
    EXPECT_TRUE(tcp.written.contains(QByteArray("\x02"
                                                "RST2   101\x03")));
}

TEST_F(MainWindowTest, AWheelOverAListWithoutTheFocusChoosesNothing) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    QTest::keyClicks(find<QLineEdit>("txt_suite_1"), "101");
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
        tcp.written.clear();
        turnWheel(list);
        EXPECT_FALSE(list->hasFocus()) << name;
        EXPECT_EQ(list->currentIndex(), -1) << name;
        EXPECT_TRUE(tcp.written.isEmpty()) << name;
        EXPECT_EQ(session.log().logText(), before) << name;

        list->setFocus();
        turnWheel(list);
        EXPECT_EQ(list->currentIndex(), 0) << "with the focus the wheel chooses: " << name;
        EXPECT_TRUE(session.log().logText().mid(before.size()).contains(acted)) << name;
    }
}

TEST_F(MainWindowTest, CheckBoxesSetTheirOptions) {
    find<QAbstractButton>("chk_DTREnabled")->click();
    find<QAbstractButton>("chk_NullDiscard")->click();
    find<QAbstractButton>("Continuous")->click();
    find<QAbstractButton>("chk_error")->click();
    EXPECT_TRUE(session.link().settings().dtrEnabled);
    EXPECT_FALSE(session.link().settings().rtsEnabled);
    EXPECT_TRUE(session.link().settings().nullDiscard);
    EXPECT_TRUE(session.state().continuous);
    EXPECT_TRUE(session.state().errorMode);

    // Hidden and shown again by the modes, the boxes keep what the operator ticked.
    find<QAction>("mnuVoiceMail")->trigger();
    find<QAction>("mnuHotel")->trigger();
    EXPECT_TRUE(find<QAbstractButton>("chk_DTREnabled")->isChecked());

    find<QAbstractButton>("chk_manual")->click();
    EXPECT_FALSE(find<QWidget>("fr_manual_mode")->isHidden());
    find<QAbstractButton>("chk_manual")->click();
    EXPECT_TRUE(find<QWidget>("fr_manual_mode")->isHidden());
}

TEST_F(MainWindowTest, ClosingDuringAWaitEndsTheWaitThenCloses) {
    tcp.acceptAfterMs = -1; // the PBX never accepts: Connect waits until stopped
    settings.setValue("Startup/Speed", "9600");
    window();
    find<QAction>("mnuVoiceMail")->trigger();
    pump.schedule(5000, [this] { window().close(); });
    find<QAbstractButton>("cmd_connect")->click();

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
    find<QAbstractButton>("cmd_connect")->click();
    EXPECT_EQ(pump.elapsedMs(), before) << "nothing starts once the window has closed";
}

TEST_F(MainWindowTest, SettingsThatCannotBeStoredAreSaidAsTheWindowCloses) {
    // A folder where the settings file should be: nothing can be written there, even by root.
    QDir(dir.path()).mkdir("larkspur.ini");
    window().close();
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices.first().startsWith("The settings could not be saved to "))
        << op.notices.first().toStdString();
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

TEST_F(MainWindowTest, OpensWhollyInSightOnTheSmallestScreen) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    ASSERT_EQ(screen->availableGeometry(), QRect(0, 0, 1280, 800));
    EXPECT_TRUE(screen->availableGeometry().contains(window().frameGeometry()))
        << window().frameGeometry().width() << "x" << window().frameGeometry().height();
    const QStatusBar* status = window().statusBar();
    EXPECT_TRUE(window().rect().contains(status->geometry()));
}

} // namespace
