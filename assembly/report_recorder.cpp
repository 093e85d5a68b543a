#include "assembly/report_recorder.h"

#include "assembly/junit_recorder.h"
#include "assembly/link_name.h"
#include "core/event_pump.h"
#include "records/wire_trace.h"
#include "report/report_page.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <QFileInfo>

namespace larkspur {

namespace {
QString endingWords(ScriptEngine::RunOutcome outcome) {
    switch (outcome) {
    case ScriptEngine::RunOutcome::Completed:
        return QStringLiteral("played to its end");
    case ScriptEngine::RunOutcome::Cancelled:
        return QStringLiteral("cancelled");
    case ScriptEngine::RunOutcome::Unrecognized:
        return QStringLiteral("stopped on a command it does not know");
    case ScriptEngine::RunOutcome::NotRead:
    case ScriptEngine::RunOutcome::Busy:
        break;
    }
    return QStringLiteral("not played");
}
} // namespace

ReportRecorder::ReportRecorder(Session& session, ScriptEngine& engine, WireTrace& trace,
                               JunitRecorder& junit, const QString& script)
    : m_session(session), m_script(script), m_started(session.pump().currentDateTime()),
      m_ending(QStringLiteral("not played")) {
    const auto now = [this] { return m_session.pump().currentDateTime(); };
    connect(&engine, &ScriptEngine::runStarted, this, [this, now](const QString& source) {
        // What came before the first run (the link's own test) belongs to it.
        if (m_runEnded) {
            m_record = RunRecord();
            m_started = now();
        }
        m_script = source;
        m_ending = QStringLiteral("still playing");
    });
    connect(&engine, &ScriptEngine::runFinished, this, [this](ScriptEngine::RunOutcome outcome) {
        m_ending = endingWords(outcome);
        m_runEnded = true;
    });
    connect(&engine, &ScriptEngine::commandStarted, this,
            [this, now](const QString& line, int fileLine) {
                m_record.commandStarted(line, fileLine, now());
            });
    connect(&junit, &JunitRecorder::caseClosed, this, [this, now](const JunitReport::Case& c) {
        m_record.commandEnded(c.line, c.failure, now());
    });
    connect(&trace, &WireTrace::exchangeEnded, this,
            [this](const Exchange& exchange) { m_record.exchange(exchange); });
    connect(&session.events(), &SessionEvents::expectationEnded, this,
            [this, now](const QString& item, bool succeeded, qint64 ms) {
                m_record.wait(item,
                              succeeded ? ReportStep::WaitEnd::Met : ReportStep::WaitEnd::Expired,
                              ms, now());
            });
    connect(&session.events(), &SessionEvents::expectationStopped, this,
            [this, now](const QString& item) {
                m_record.wait(item, ReportStep::WaitEnd::Stopped, 0, now());
            });
}

bool ReportRecorder::write(const QString& path, const QString& program,
                           const QList<std::pair<QString, QString>>& facts,
                           const RunStatistics& statistics, QString* error) const {
    const LinkSettings& s = m_session.link().settings();
    const PmsMode mode = m_session.link().pmsMode();
    const QString stamp = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    ReportHeading heading;
    heading.title =
        program + QStringLiteral(": ") +
        (m_script.isEmpty() ? QStringLiteral("no script") : QFileInfo(m_script).fileName());
    heading.facts = {{QStringLiteral("Script"), m_script}, {QStringLiteral("Link"), linkName(s)}};
    if (!s.useTcp)
        heading.facts.append(
            {QStringLiteral("Line"),
             QStringLiteral("%1,%2,%3,%4").arg(s.speed, s.parity, s.dataBits, s.stopBits)});
    heading.facts.append(
        {{QStringLiteral("Mode"), mode == PmsMode::Hotel
                                      ? pmsModeName(mode)
                                      : pmsModeName(mode) + QLatin1Char(' ') +
                                            protocolName(m_session.link().protocolType())},
         {QStringLiteral("Played"),
          m_session.state().continuous ? QStringLiteral("continuously") : QStringLiteral("once")},
         {QStringLiteral("Started"), m_started.toString(stamp)},
         {QStringLiteral("Ended"), m_session.pump().currentDateTime().toString(stamp)},
         {QStringLiteral("The script"), m_ending}});
    heading.facts.append(facts);
    return writeReportPage(path, heading, m_record, statistics, error);
}

} // namespace larkspur
