// Every control of the window pressed during each kind of wait. A press does its work at once
// or is refused: nothing it starts may wait inside the outer wait, and the outer wait ends as
// it would have without the press (or sooner, for the controls that are there to end it).
#include "console/console_fixture.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QTimer>

#include <functional>
#include <memory>

using namespace larkspur;
using namespace larkspur::test;

namespace {

const QByteArray enq(1, 5), ack(1, 6);
constexpr qint64 outerLimitMs = 120'000;

// The kinds of wait an operator can press into, each started from the window as a click.
struct OuterWait {
    const char* name;
    // Readies the rig and gives the click that starts the wait.
    std::function<std::function<void()>(ConsoleRig&)> start;
    qint64 pressAtMs;
};

void connectAcknowledged(ConsoleRig& rig) {
    rig.pbxAcknowledges();
    rig.find<QAbstractButton>("cmd_connect")->click();
}

// A script file the next Run Script opens.
std::function<void()> runScript(ConsoleRig& rig, const QByteArray& text) {
    const QString path = rig.dir.filePath("script.txt");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(text);
    file.close();
    rig.op.filesToOpen = {path};
    return [&rig] { rig.find<QAbstractButton>("Xtest")->click(); };
}

const OuterWait outerWaits[] = {
    {"an ACK wait",
     [](ConsoleRig& rig) -> std::function<void()> {
         // The PBX grants the connection test, then answers nothing: the check-in waits for
         // the ACK of each of its bids.
         rig.tcp.onWrite = [&rig](const QByteArray& bytes) {
             if (bytes == enq)
                 rig.tcp.deliver(ack, 10);
         };
         rig.find<QAbstractButton>("cmd_connect")->click();
         rig.tcp.onWrite = nullptr;
         rig.session.fields().setText(Field::txt_suite_1, QStringLiteral("101"));
         return [&rig] { rig.find<QAbstractButton>("cmd_chk_in")->click(); };
     },
     2'000},
    {"an expected-message wait",
     [](ConsoleRig& rig) {
         connectAcknowledged(rig);
         return runScript(rig, "WAIT STS1   101 5\r\n;\r\n");
     },
     2'000},
    {"the pacing pause",
     [](ConsoleRig& rig) {
         connectAcknowledged(rig);
         return runScript(rig, "CHK1   101\r\nCHK0   101\r\n;\r\n");
     },
     700},
    {"the TCP connect loop",
     [](ConsoleRig& rig) -> std::function<void()> {
         // The PBX refuses for three seconds, then takes the connection and grants the bid.
         rig.pbxAcknowledges();
         rig.tcp.acceptAfterMs = -1;
         rig.pump.schedule(3'500, [&rig] { rig.tcp.acceptAfterMs = 0; });
         return [&rig] { rig.find<QAbstractButton>("cmd_connect")->click(); };
     },
     1'500},
};

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
    const auto take = [&names](QObject* o) {
        const QString name = o->objectName();
        if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")) && name != "mnuExit")
            names << name;
    };
    for (QAbstractButton* b : rig.window().findChildren<QAbstractButton*>())
        take(b);
    for (QComboBox* c : rig.window().findChildren<QComboBox*>())
        take(c);
    for (QAction* a : rig.window().findChildren<QAction*>())
        if (!a->isSeparator() && !a->menu())
            take(a);
    names.removeDuplicates();
    return names;
}

// What pressing `control` at the outer wait's press time did: how long the press itself took
// and how long the outer wait took, in virtual ms. No control: the outer wait alone.
struct Outcome {
    qint64 pressMs = -1, outerMs = -1;
};

Outcome pressDuring(const OuterWait& outer, const QString& control) {
    ConsoleRig rig;
    rig.window();
    const std::function<void()> start = outer.start(rig);
    Outcome outcome;
    const std::function<void()> press = control.isEmpty() ? nullptr : pressOf(rig, control);
    if (press) {
        rig.pump.schedule(outer.pressAtMs, [&] {
            const qint64 pressedAt = rig.pump.elapsedMs();
            closeDialogsOpenedBy(press);
            outcome.pressMs = rig.pump.elapsedMs() - pressedAt;
        });
    }
    // A press that loops for ever inside the wait is ended as a signal ends a run, so it fails
    // the test instead of hanging it.
    rig.pump.schedule(outerLimitMs, [&rig] { rig.pump.requestStop(); });
    const qint64 startedAt = rig.pump.elapsedMs();
    start();
    outcome.outerMs = rig.pump.elapsedMs() - startedAt;
    return outcome;
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
        const qint64 alone = pressDuring(outer, QString()).outerMs;
        ASSERT_GT(alone, outer.pressAtMs) << outer.name;
        for (const QString& control : controls) {
            const Outcome o = pressDuring(outer, control);
            const std::string what = control.toStdString() + " during " + outer.name;
            EXPECT_EQ(o.pressMs, 0) << what;
            if (ending.contains(control))
                EXPECT_LE(o.outerMs, alone) << what;
            else
                EXPECT_EQ(o.outerMs, alone) << what;
        }
    }
}

} // namespace
