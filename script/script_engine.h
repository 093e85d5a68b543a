#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace larkspur {

class ScriptText;
struct ScriptStep;

// The filter of the dialogs that choose a script file.
QString scriptFileFilter();
class Session;

// Recording, replay and expected-message waits, driving the session exactly as the operator
// would: the same fields are filled and the same operations pressed.
class ScriptEngine : public QObject {
    Q_OBJECT
public:
    // How a replay ended.
    enum class RunOutcome {
        Completed,    // reached its end (errorCount tells whether transactions failed)
        Cancelled,    // a stop between commands
        Unrecognized, // stopped on a command it does not know
        NotRead,      // no file chosen, or it could not be read
        Busy,         // a wait was running; nothing done
    };

    explicit ScriptEngine(Session& session);

    // Recording.
    void cmd_start_script();
    void cmd_end_script();
    // The expectation lists; `item` is the chosen entry ("ack" ... "alt").
    void cmb_wait_Click(const QString& item);
    void cmb_notify_Click(const QString& item);
    // Their entries, in list order.
    static const QStringList& expectationItems();

    // "Run Script": asks for the file, then plays it.
    void Xtest();
    // Plays the script in `path` (Run Script with the file already chosen).
    RunOutcome runScriptFile(const QString& path);
    // Plays a script already read, from the file `source` when there is one.
    RunOutcome runScript(const ScriptText& script, const QString& source = QString());
    bool running() const { return m_running; }

    void StopScript();
    // CANCEL: asks for a stop and nothing else.
    void cmd_cancel();
    // `stopScript`: asked by Stop, Cancel, Disconnect and a lost link; a running script stops at
    // its next step, and the step that stops clears it; a wait ends and clears it.
    bool stopScript() const { return m_stopScript; }

    // The expected-message waits: plain (errors for other messages) and with notice.
    void WAIT(const QString& item, const QString& digit);
    void NTFY(const QString& item, const QString& digit);

    // The fixed recovery dialogue of the manual commands.
    void cmd_recovery();

Q_SIGNALS:
    // A replay starts, of the script file `source` (empty: none named).
    void runStarted(const QString& source);
    // A replayed command is about to run; `line` is its script line and `fileLine` where it
    // stands in the file (for reports).
    void commandStarted(const QString& line, int fileLine);
    // The replayed command finished.
    void commandFinished();
    // The run stops on the line `fileLine` (0: past the last line), which the runner does not
    // know; `why` says what is wrong with it.
    void unrecognizedCommand(int fileLine, const QString& why);
    // The run is over.
    void runFinished(larkspur::ScriptEngine::RunOutcome outcome);
    // End Rec. Script wrote the recording, `lines` lines, to `path`.
    void scriptSaved(const QString& path, int lines);

private:
    // Resets the error count; false when a run or a wait is under way.
    bool mayStart();
    RunOutcome interpret(const ScriptText& script);
    RunOutcome stopOnUnrecognized(const QString& command, int fileLine, const QString& why);
    // Fills the step's fields and presses its button or runs its wait.
    void play(const ScriptStep& step);
    void startListedWait(const QString& item, bool plain);

    Session& m_session;
    bool m_running = false;
    bool m_stopScript = false;
};

} // namespace larkspur
