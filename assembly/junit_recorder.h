#pragma once

#include "assembly/junit_report.h"

#include <QObject>

#include <optional>

namespace larkspur {

class ScriptEngine;
class Session;

// Builds the JUnit cases from what happens during a run: a case opens when a command starts
// and closes when it ends; an error record, a transaction the PBX did not take (refused,
// unanswered, answered only by a stale ACK, cut short) or that sent nothing because it refused a
// field, a stopped wait or a lost link fails it.
class JunitRecorder : public QObject {
    Q_OBJECT
public:
    JunitRecorder(Session& session, ScriptEngine& engine);

    // The output a case keeps; a command that logs more (a wait through a flood) keeps the
    // start and says how much was left out.
    static constexpr qsizetype maxOutput = 64 * 1024;

    // Log text written while a case is open becomes its output.
    void addOutput(QStringView text);
    // The run never reached the script: one failing case for the connection.
    void connectionFailed(const QString& link, const QString& why);
    // Closes a case still open (a run cut short).
    void finish();
    // The cases that failed so far: the run's exit status follows them.
    qint64 failedCases() const { return m_failedCases; }

Q_SIGNALS:
    void caseClosed(const larkspur::JunitReport::Case& c);

private:
    void open(const QString& name, int line);
    void fail(const QString& why);
    void close();

    Session& m_session;
    std::optional<JunitReport::Case> m_case;
    double m_started = 0;
    qsizetype m_outputLeftOut = 0;
    qint64 m_failedCases = 0;
};

} // namespace larkspur
