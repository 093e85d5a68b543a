// What each button, check box, list and menu entry of the window starts. Every operation runs
// through the operation runner, which counts how many are on the stack.
#include "console/main_window.h"

#include "console/about_dialog.h"
#include "console/check_script_dialog.h"
#include "console/comm_port_dialog.h"
#include "console/log_commands.h"
#include "console/log_view.h"
#include "console/status_bar.h"
#include "console/telnet_dialog.h"
#include "core/operator_interface.h"
#include "link/manual_commands.h"
#include "script/script_check.h"
#include "script/script_engine.h"
#include "script/script_file.h"
#include "script/script_reader.h"
#include "transactions/session.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

namespace larkspur {

namespace {

template <typename Object> using Command = std::pair<const char*, void (Object::*)()>;

const std::pair<const char*, void (*)(Link&)> linkButtons[] = {
    {"cmd_ack", &cmd_ack}, {"cmd_nak", &cmd_nak}, {"cmd_enquiry_basic", &cmd_enquiry_basic},
    {"cmd_ayt", &cmd_ayt}, {"cmd_grs", &cmd_grs}, {"cmd_end", &cmd_end},
};

const Command<ScriptEngine> scriptButtons[] = {
    {"cmd_start_script", &ScriptEngine::cmd_start_script},
    {"cmd_end_script", &ScriptEngine::cmd_end_script},
    {"Xtest", &ScriptEngine::Xtest},
    {"StopScript", &ScriptEngine::StopScript},
    {"cmd_cancel", &ScriptEngine::cmd_cancel},
    {"cmd_recovery", &ScriptEngine::cmd_recovery},
};

} // namespace

void MainWindow::wireCommands() {
    for (const QList<Control>* buttons : {&transactionButtons(), &linkedSuiteButtons()})
        for (const Control button : *buttons)
            onClick(controlName(button).toLatin1().constData(),
                    [this, button] { m_session.press(button); });
    onClick("cmd_ste_explain", [this] { m_session.cmd_ste_explain(); });
    onClick("cmd_disconnect", [this] { m_session.cmd_disconnect(); });
    onClick("cmd_clear", [this] { m_session.cmd_clear(); });
    for (const auto& [name, command] : linkButtons)
        onClick(name, [this, command = command] { command(m_session.link()); });
    for (const auto& [name, command] : scriptButtons)
        onClick(name, [this, command = command] { (m_engine.*command)(); });
    onClick("cmd_connect", [this] { connectLink(); });
    onClick("cmd_view_log", [this] { viewLog(); });
    onClick("cmd_save_log", [this] {
        const QString notSaved = cmd_save_log(m_session);
        if (!notSaved.isEmpty())
            m_status->setWarning(notSaved);
    });
    onClick("cmd_open_logfile", [this] { openLog(); });
    onClick("cmd_new_error_file", [this] { startNewLog(); });

    for (const char* box : {"chk_error", "chk_linked_suite", "chk_manual", "chk_DTREnabled",
                            "chk_RTSEnabled", "chk_NullDiscard", "Continuous"})
        onCheck(box);

    onChoose("cmb_restrict", [this](const QString& item) { m_session.cmb_restrict_Click(item); });
    onChoose("cmb_wait", [this](const QString& item) { m_engine.cmb_wait_Click(item); });
    onChoose("cmb_notify", [this](const QString& item) { m_engine.cmb_notify_Click(item); });

    for (const char* entry : {"mnuHotel", "mnuVoiceMail", "mnu_HIS", "mnu_Hyatt"})
        onMenu(entry,
               [this, entry] { m_session.choose(ControlBinder::control(QLatin1String(entry))); });
    onMenu("mnuCommport", [this] { showCommPortDialog(); });
    onMenu("mnuTelnet", [this] { showTelnetDialog(); });
    onMenu("mnuAbout", [this] { showAbout(); });
    // Closing has its own way with running operations.
    connect(m_controls.get<QAction>(QStringLiteral("mnuExit")), &QAction::triggered, this,
            &QWidget::close);
}

void MainWindow::onClick(const char* name, const std::function<void()>& operation) {
    connect(m_controls.get<QAbstractButton>(QLatin1String(name)), &QAbstractButton::clicked, this,
            [this, operation] { m_runner.run(operation); });
}

void MainWindow::onCheck(const char* name) {
    const Control control = ControlBinder::control(QLatin1String(name));
    connect(m_controls.get<QAbstractButton>(QLatin1String(name)), &QAbstractButton::clicked, this,
            [this, control](bool checked) {
                m_runner.run([&] { m_session.choose(control, checked); });
                // The box shows the session's state, whether or not the click was taken.
                m_controls.refresh(control);
            });
}

void MainWindow::onChoose(const char* name, const std::function<void(const QString&)>& operation) {
    // Choosing the entry already shown chooses it again.
    connect(m_controls.get<QComboBox>(QLatin1String(name)), &QComboBox::textActivated, this,
            [this, operation](const QString& item) { m_runner.run([&] { operation(item); }); });
}

void MainWindow::onMenu(const char* name, const std::function<void()>& operation) {
    connect(
        m_controls.get<QAction>(QLatin1String(name)), &QAction::triggered, this, [this, operation] {
            m_runner.run(operation);
            // Qt ticks a checkable entry by itself on a click; the ticks are the session's.
            for (const char* entry :
                 {"mnuHotel", "mnuVoiceMail", "mnu_HIS", "mnu_Hyatt", "mnuCommport", "mnuTelnet"})
                m_controls.refresh(ControlBinder::control(QLatin1String(entry)));
        });
}

void MainWindow::checkScript() {
    const QString path = m_session.operatorInterface().chooseFileToOpen(scriptFileFilter());
    if (path.isEmpty())
        return;
    const ScriptFile file = readScriptFile(path);
    if (file.status != ScriptFile::Status::Read) {
        m_session.operatorInterface().notify(
            QStringLiteral("Cannot read script file %1: %2").arg(path, file.error));
        return;
    }
    if (!m_checkDialog) {
        m_checkDialog = new CheckScriptDialog(this);
        connect(m_checkDialog, &CheckScriptDialog::runRequested, this, [this](const QString& p) {
            m_runner.run([this, p] { m_engine.runScriptFile(p); });
        });
        // It runs as Run Script does, and only when Run Script could: the dialog stays open
        // while scripts start and end, so its button follows the window's.
        connect(&m_controls, &ControlBinder::changed, m_checkDialog,
                [this] { m_checkDialog->setRunEnabled(m_controls.state(Control::Xtest).enabled); });
    }
    // Checked as the window's Error Mode will send it.
    m_checkDialog->showCheck(
        path,
        larkspur::checkScript(readScript(file.bytes), {.errorMode = m_session.state().errorMode}));
    m_checkDialog->setRunEnabled(m_controls.state(Control::Xtest).enabled);
    m_checkDialog->show();
    m_checkDialog->raise();
    m_checkDialog->activateWindow();
}

void MainWindow::connectLink() {
    switch (m_session.cmd_connect()) {
    case Link::ConnectResult::Connected:
        m_status->setLinkState(LinkState::Connected);
        break;
    case Link::ConnectResult::NoResponse:
        m_status->setLinkState(LinkState::NoResponse);
        break;
    case Link::ConnectResult::NotOpened:
        m_status->setLinkState(LinkState::Closed);
        break;
    case Link::ConnectResult::Lost:
        break; // the status bar shows why already
    case Link::ConnectResult::Busy:
        break; // refused: nothing changed
    }
}

void MainWindow::showCommPortDialog() {
    if (!m_commPortDialog)
        m_commPortDialog = new CommPortDialog(m_session, this);
    m_commPortDialog->load();
    m_commPortDialog->exec();
}

void MainWindow::showTelnetDialog() {
    if (!m_telnetDialog)
        m_telnetDialog = new TelnetDialog(m_session, this);
    m_telnetDialog->load();
    m_telnetDialog->exec();
}

void MainWindow::showAbout() {
    if (!m_about)
        m_about = new AboutDialog(this);
    m_about->exec();
}

void MainWindow::viewLog() {
    m_logView->exec();
}

void MainWindow::openLog() {
    if (cmd_open_logfile(m_session))
        m_logView->exec();
}

void MainWindow::startNewLog() {
    cmd_new_error_file(m_session);
    m_logView->entriesCleared();
}

} // namespace larkspur
