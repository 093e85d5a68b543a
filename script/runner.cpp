// Run Script, Stop Script and CANCEL.
#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "link/exchange.h"
#include "link/manual_commands.h"
#include "script/expectation_waits.h"
#include "script/script_engine.h"
#include "script/script_file.h"
#include "script/script_reader.h"
#include "transactions/session.h"

namespace larkspur {

QString scriptFileFilter() {
    return QStringLiteral("Script files (*.txt *.scr);;All files (*)");
}

ScriptEngine::ScriptEngine(Session& session) : m_session(session) {
    // A disconnect, asked for or not, stops a running script.
    const auto stop = [this] { m_stopScript = true; };
    connect(&session.link(), &Link::disconnected, this, stop);
    connect(&session.link(), &Link::linkLost, this, stop);
}

bool ScriptEngine::mayStart() {
    // A run never starts inside another: it would play in the other's pauses and take its count.
    if (m_running)
        return false;
    m_session.errors().resetErrors();
    return !m_session.link().waitingForAck();
}

void ScriptEngine::Xtest() {
    if (!mayStart())
        return;
    const QString path = m_session.operatorInterface().chooseFileToOpen(scriptFileFilter());
    if (path.isEmpty())
        return;
    runScriptFile(path);
}

ScriptEngine::RunOutcome ScriptEngine::runScriptFile(const QString& path) {
    Session& s = m_session;
    if (!mayStart())
        return RunOutcome::Busy;
    const ScriptFile file = readScriptFile(path);
    if (file.status != ScriptFile::Status::Read) {
        s.operatorInterface().notify(
            QStringLiteral("Cannot read script file %1: %2").arg(path, file.error));
        return RunOutcome::NotRead;
    }
    return runScript(readScript(file.bytes), path);
}

ScriptEngine::RunOutcome ScriptEngine::runScript(const ScriptText& script, const QString& source) {
    Session& s = m_session;
    if (!mayStart())
        return RunOutcome::Busy;
    m_stopScript = false;
    s.setScriptControls(ConsoleState::Script::Running);
    s.useScriptMode(script.pmsMode, script.protocolType);

    s.log().logLine(QStringLiteral("************* STARTING SCRIPT ***************"));
    m_running = true;
    Q_EMIT runStarted(source);
    const RunOutcome outcome = interpret(script);
    m_running = false;
    Q_EMIT runFinished(outcome);
    return outcome;
}

void ScriptEngine::StopScript() {
    m_stopScript = true;
    m_session.setScriptControls(ConsoleState::Script::Idle);
}

void ScriptEngine::cmd_cancel() {
    m_stopScript = true;
}

void ScriptEngine::WAIT(const QString& item, const QString& digit) {
    runExpectationWait(m_session, WaitKind::Plain, item, digit, m_stopScript);
}

void ScriptEngine::NTFY(const QString& item, const QString& digit) {
    runExpectationWait(m_session, WaitKind::WithNotice, item, digit, m_stopScript);
}

void ScriptEngine::cmd_recovery() {
    Link& link = m_session.link();
    // Started inside a wait, its own bids and waits would hold that wait up.
    if (link.waitingForAck())
        return;
    // Bid until the PBX grants the line; only closing the console ends this.
    AckWait bid;
    do {
        cmd_enquiry_basic(link);
        bid = wait_for_ack(link, false);
    } while (bid.ackFailed() && !link.interrupted());
    for (int round = 1; round <= 4; ++round) {
        cmd_enquiry_basic(link);
        WAIT(QStringLiteral("ack"), QStringLiteral("0"));
        cmd_ayt(link);
        WAIT(QStringLiteral("ack"), QStringLiteral("0"));
    }
    WAIT(QStringLiteral("enq"), QStringLiteral("0"));
    cmd_ack(link);
    WAIT(QStringLiteral("rti"), QStringLiteral("0"));
    cmd_ack(link);
}

} // namespace larkspur
