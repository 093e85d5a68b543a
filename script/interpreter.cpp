// Plays the script text: one command, then a one-second pause, until its end, a stop or a
// command it does not know. The reading of each command is the script steps'.
#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "core/pause.h"
#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "script/expectation_waits.h"
#include "script/script_commands.h"
#include "script/script_engine.h"
#include "script/script_reader.h"
#include "script/script_steps.h"
#include "transactions/session.h"

namespace larkspur {

namespace {
constexpr float commandPacingSeconds = 1.0f;
} // namespace

ScriptEngine::RunOutcome ScriptEngine::interpret(const ScriptText& script) {
    Session& s = m_session;
    qsizetype position = firstCommandPosition(script);
    for (;;) {
        // Closing the console asks for a stop too: a wait it ended has cleared stopScript, and
        // every later wait would return at once, so a Continuous script would never end.
        // A lost link stops the script as a disconnect does.
        if (m_stopScript || s.link().interrupted()) {
            m_stopScript = false;
            s.log().logLine(QStringLiteral("Script cancelled..."));
            return RunOutcome::Cancelled;
        }
        for (Field room : roomFields)
            s.fields().setText(room, QString());

        const ScriptStep step = readStep(script, position);
        switch (step.kind) {
        case ScriptStep::Kind::Transaction:
        case ScriptStep::Kind::LinkedSuite:
        case ScriptStep::Kind::Expectation:
            Q_EMIT commandStarted(step.line, script.fileLineAt(step.lineStart));
            play(step);
            Q_EMIT commandFinished();
            if (step.next == 0)
                return stopOnUnrecognized(step.stopCommand, script.fileLineAt(step.lineStart),
                                          step.stopReason);
            break;
        case ScriptStep::Kind::PassedOver:
            break;
        case ScriptStep::Kind::End:
            if (!s.state().continuous) {
                if (s.errors().errorCount() < 1)
                    s.operatorInterface().notify(QStringLiteral("Script file completed"));
                else
                    s.operatorInterface().notify(
                        QStringLiteral("Script file ended!") + carriage_return() +
                        QStringLiteral(" There were %1 Errors").arg(s.errors().errorCount()) +
                        carriage_return() + QStringLiteral("View Log for details"));
                s.setScriptControls(ConsoleState::Script::Idle);
                return RunOutcome::Completed;
            }
            position = 1;
            break;
        case ScriptStep::Kind::Unrecognized:
            return stopOnUnrecognized(step.stopCommand, script.fileLineAt(step.start),
                                      step.stopReason);
        }
        if (step.kind != ScriptStep::Kind::End)
            position = step.next;
        // The pause between commands is a wait of the run: nothing pressed meanwhile may start
        // a wait of its own inside it.
        const Link::WaitGuard pacing(s.link());
        pause_seconds(s.pump(), commandPacingSeconds);
    }
}

void ScriptEngine::play(const ScriptStep& step) {
    Session& s = m_session;
    for (const ReadField& field : step.fields)
        s.fields().setText(field.field, field.text);
    switch (step.kind) {
    case ScriptStep::Kind::Transaction:
        step.command->press(s);
        break;
    case ScriptStep::Kind::LinkedSuite:
        s.send_linked_suite(step.word);
        break;
    case ScriptStep::Kind::Expectation:
        runExpectationWait(s, step.waitKind, step.expectation->item, step.digit, m_stopScript);
        break;
    default:
        break;
    }
}

ScriptEngine::RunOutcome ScriptEngine::stopOnUnrecognized(const QString& command, int fileLine,
                                                          const QString& why) {
    Session& s = m_session;
    Q_EMIT unrecognizedCommand(fileLine, why);
    s.operatorInterface().notify(QStringLiteral("Command: ") + command);
    s.errors().recordError(Time_of_error(s.pump().currentDateTime()) +
                               QStringLiteral("-> Script File Corrupt:\n\n\n"),
                           false);
    s.log().logLine(QStringLiteral("Script file error! Unrecognized command"));
    s.setScriptControls(ConsoleState::Script::Idle);
    s.log().logLine(QStringLiteral("Script Cancelled!"));
    return RunOutcome::Unrecognized;
}

} // namespace larkspur
