// Recording: the two recording buttons and the expectation lists.
#include "core/operator_interface.h"
#include "protocol/expectation_items.h"
#include "records/script_lines.h"
#include "script/expectation_waits.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <QSaveFile>

namespace larkspur {

namespace {

// The recording buttons act only on a live link.
bool linkIsUp(Session& s) {
    if (s.link().isOpen())
        return true;
    s.operatorInterface().notify(s.link().settings().useTcp ? QStringLiteral("Not Connected!")
                                                            : QStringLiteral("port closed"));
    return false;
}

} // namespace

const QStringList& ScriptEngine::expectationItems() {
    static const QStringList items = [] {
        QStringList names;
        for (const ExpectationItem& entry : larkspur::expectationItems())
            names << entry.item;
        return names;
    }();
    return items;
}

void ScriptEngine::cmd_start_script() {
    Session& s = m_session;
    if (s.link().waitingForAck() || !linkIsUp(s))
        return;
    s.setScriptControls(ConsoleState::Script::Recording);
    if (s.recorder().recording()) {
        s.operatorInterface().notify(QStringLiteral("A script file is already in progress."));
    } else {
        s.recorder().start(scriptHeader(s.link().pmsMode(), s.link().protocolType()));
    }
    s.errors().resetErrors();
}

void ScriptEngine::cmd_end_script() {
    Session& s = m_session;
    if (s.link().waitingForAck() || !linkIsUp(s))
        return;
    if (!s.recorder().recording()) {
        s.operatorInterface().notify(QStringLiteral("No script has been started"));
        return;
    }
    // A cancelled dialog or a failed write keeps the recording, so nothing recorded is lost.
    const QString path = s.operatorInterface().chooseFileToSave(scriptFileFilter());
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(s.recorder().scriptText().toLatin1()) < 0 ||
        !file.commit()) {
        s.operatorInterface().notify(
            QStringLiteral("Cannot write script file %1: %2").arg(path, file.errorString()));
        return;
    }
    const int lines = s.recorder().lines();
    s.recorder().finish();
    s.setScriptControls(ConsoleState::Script::Idle);
    Q_EMIT scriptSaved(path, lines);
}

void ScriptEngine::cmb_wait_Click(const QString& item) {
    startListedWait(item, true);
}

void ScriptEngine::cmb_notify_Click(const QString& item) {
    startListedWait(item, false);
}

void ScriptEngine::startListedWait(const QString& item, bool plain) {
    if (m_session.link().waitingForAck())
        return;
    const QString chosen = item.trimmed();
    if (chosen.isEmpty())
        return;
    if (!isExpectationItem(chosen)) {
        m_session.operatorInterface().notify(QStringLiteral("message not recgonized"));
        return;
    }
    // The wait's time comes from the wake-up time field.
    runExpectationWait(m_session, plain ? WaitKind::Plain : WaitKind::WithNotice, chosen,
                       m_session.fields().text(Field::txt_time), m_stopScript);
}

} // namespace larkspur
