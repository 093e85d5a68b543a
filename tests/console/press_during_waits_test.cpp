// Every control of the window pressed during each kind of wait. A press does its work at once
// or is refused: nothing it starts may wait inside the outer wait, and the outer wait ends as
// it would have without the press (or sooner, for the controls that are there to end it).
#include "console/console_fixture.h"

#include <QCheckBox>

using namespace larkspur;
using namespace larkspur::test;

namespace {

// The kinds of wait an operator can press into: what readies the rig, and the button that
// starts the wait.
struct OuterWait {
    const char* name;
    std::function<void(ConsoleRig&)> ready;
    const char* start;
    qint64 pressAtMs;
};

// Connects to a PBX that acknowledges everything; the next Run Script opens `text`.
std::function<void(ConsoleRig&)> script(const QByteArray& text) {
    return [text](ConsoleRig& rig) {
        rig.connectToPbx();
        QFile file(rig.dir.filePath("script.txt"));
        file.open(QIODevice::WriteOnly);
        file.write(text);
        rig.op.filesToOpen = {file.fileName()};
    };
}

const OuterWait outerWaits[] = {
    // The PBX grants the connection test, then answers nothing: the check-in waits for the ACK
    // of each of its bids.
    {"an ACK wait",
     [](ConsoleRig& rig) {
         rig.connectToPbx();
         rig.tcp.onWrite = nullptr;
         rig.type("txt_suite_1", "101");
     },
     "cmd_chk_in", 2'000},
    {"an expected-message wait", script("WAIT STS1   101 5\r\n;\r\n"), "Xtest", 2'000},
    {"the pacing pause", script("CHK1   101\r\nCHK0   101\r\n;\r\n"), "Xtest", 700},
    // The PBX refuses for three seconds, then takes the connection and grants the bid.
    {"the TCP connect loop",
     [](ConsoleRig& rig) {
         rig.pbxAcknowledges();
         rig.tcp.acceptAfterMs = -1;
         rig.pump.schedule(3'500, [&rig] { rig.tcp.acceptAfterMs = 0; });
     },
     "cmd_connect", 1'500}};

// Closes whatever modal dialog a press opens, once its event loop runs.
void closeDialogsOpenedBy(const std::function<void()>& press) {
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] {
        if (QWidget* modal = QApplication::activeModalWidget())
            modal->close();
    });
    closer.start(0);
    press();
}

// How to press the control named `name` in a window, as a click or an assistive tool would.
std::function<void()> pressOf(ConsoleRig& rig, const QString& name) {
    QObject* o = rig.window().findChild<QObject*>(name);
    if (auto* box = qobject_cast<QCheckBox*>(o))
        // Ticked and unticked at once: what a box sets is not a wait, and the outer wait must
        // run on with the settings it started with.
        return [box] {
            box->click();
            box->click();
        };
    if (auto* button = qobject_cast<QAbstractButton*>(o))
        return [button] { button->click(); };
    if (auto* list = qobject_cast<QComboBox*>(o))
        return [list] {
            if (list->isEnabled() && list->count() > 0)
                Q_EMIT list->textActivated(list->itemText(0));
        };
    if (auto* action = qobject_cast<QAction*>(o))
        // An entry that ticks a choice of its menu (the mode, the protocol, the link) is
        // chosen and the choice it replaced chosen again at once, as the boxes are.
        return [action] {
            auto* menu = qobject_cast<QMenu*>(action->associatedObjects().value(0));
            QList<QAction*> ticked;
            for (QAction* entry : menu ? menu->actions() : QList<QAction*>())
                if (entry->isChecked())
                    ticked << entry;
            action->trigger();
            for (QAction* entry : ticked)
                if (!entry->isChecked())
                    entry->trigger();
        };
    return nullptr;
}

// Every control of the window an operator can press, by object name. Exit is left out: closing
// during a wait has its own rule and tests.
QStringList everyControl(ConsoleRig& rig) {
    QStringList names;
    for (QObject* o : rig.window().findChildren<QObject*>()) {
        auto* action = qobject_cast<QAction*>(o);
        const QString name = o->objectName();
        if ((qobject_cast<QAbstractButton*>(o) || qobject_cast<QComboBox*>(o) ||
             (action && !action->isSeparator() && !action->menu())) &&
            !name.isEmpty() && !name.startsWith(QLatin1String("qt_")) && name != "mnuExit")
            names << name;
    }
    names.removeDuplicates();
    return names;
}

// How long pressing `control` at the outer wait's press time took, and how long the outer wait
// took, in virtual ms. No control: the outer wait alone.
std::pair<qint64, qint64> pressDuring(const OuterWait& outer, const QString& control) {
    ConsoleRig rig;
    outer.ready(rig);
    qint64 pressMs = -1;
    if (const std::function<void()> press = control.isEmpty() ? nullptr : pressOf(rig, control)) {
        rig.pump.schedule(outer.pressAtMs, [&rig, &pressMs, press] {
            const qint64 pressedAt = rig.pump.elapsedMs();
            closeDialogsOpenedBy(press);
            pressMs = rig.pump.elapsedMs() - pressedAt;
        });
    }
    // A press that loops for ever inside the wait is ended as a signal ends a run, so it fails
    // the test instead of hanging it.
    rig.pump.schedule(120'000, [&rig] { rig.pump.requestStop(); });
    const qint64 startedAt = rig.pump.elapsedMs();
    rig.press(outer.start);
    return {pressMs, rig.pump.elapsedMs() - startedAt};
}

TEST(PressDuringWaits, NothingNestsAndTheOuterWaitEndsAsItWouldHave) {
    // The controls that are there to end a wait or a run.
    const QStringList ending = {"StopScript", "cmd_cancel", "cmd_disconnect"};
    QStringList controls;
    {
        ConsoleRig rig;
        controls = everyControl(rig);
    }
    ASSERT_GT(controls.size(), 40);
    for (const OuterWait& outer : outerWaits) {
        const qint64 alone = pressDuring(outer, QString()).second;
        ASSERT_GT(alone, outer.pressAtMs) << outer.name;
        for (const QString& control : controls) {
            const auto [pressMs, outerMs] = pressDuring(outer, control);
            const std::string what = control.toStdString() + " during " + outer.name;
            EXPECT_EQ(pressMs, 0) << what;
            if (ending.contains(control))
                EXPECT_LE(outerMs, alone) << what;
            else
                EXPECT_EQ(outerMs, alone) << what;
        }
    }
}

} // namespace
