#pragma once

#include "report/run_record.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

#include <utility>

namespace larkspur {

class JunitRecorder;
class RunStatistics;
class ScriptEngine;
class Session;
class WireTrace;

// Keeps what the report page of a run draws: the commands as they start, the exchanges of the
// wire trace, the waits, and every JUnit case as it closes, so the page counts commands and
// failures exactly as the JUnit report does. A page is of one run: the next run starts afresh.
class ReportRecorder : public QObject {
    Q_OBJECT
public:
    // `script`: the file to be played, when known before its run starts.
    ReportRecorder(Session& session, ScriptEngine& engine, WireTrace& trace, JunitRecorder& junit,
                   const QString& script = QString());

    // Writes the page, titled for `program`; `facts` follow the link, the mode and the times.
    // False with the reason in `error`.
    bool write(const QString& path, const QString& program,
               const QList<std::pair<QString, QString>>& facts, const RunStatistics& statistics,
               QString* error) const;

private:
    Session& m_session;
    QString m_script;
    QDateTime m_started;
    QString m_ending;
    bool m_runEnded = false;
    RunRecord m_record;
};

} // namespace larkspur
