#pragma once

#include "player/junit_report.h"

#include <QDateTime>
#include <QObject>

#include <optional>

namespace larkspur {

class ScriptEngine;
class Session;

// Builds the JUnit report from what happens during a run: a case opens when a command starts
// and closes when it ends; an error record, a transaction the PBX did not take (refused,
// unanswered, answered only by a stale ACK, cut short) or that sent nothing because it refused a
// field, a stopped wait or a lost link fails it.
class JunitRecorder : public QObject {
    Q_OBJECT
public:
    JunitRecorder(Session& session, ScriptEngine& engine, JunitReport& report);

    // Log text written while a case is open becomes its output.
    void addOutput(QStringView text);
    // The run never reached the script: one failing case for the connection.
    void connectionFailed(const QString& link, const QString& why);
    // Closes a case still open (a run cut short).
    void finish();

private:
    void open(const QString& name, int line);
    void fail(const QString& why);
    void close();

    Session& m_session;
    JunitReport& m_report;
    std::optional<JunitReport::Case> m_case;
    QDateTime m_started;
};

} // namespace larkspur
