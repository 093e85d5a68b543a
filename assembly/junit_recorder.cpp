#include "assembly/junit_recorder.h"

#include "core/event_pump.h"
#include "script/script_engine.h"
#include "transactions/session.h"

namespace larkspur {

JunitRecorder::JunitRecorder(Session& session, ScriptEngine& engine) : m_session(session) {
    connect(&engine, &ScriptEngine::commandStarted, this, &JunitRecorder::open);
    connect(&engine, &ScriptEngine::commandFinished, this, &JunitRecorder::close);
    connect(&engine, &ScriptEngine::unrecognizedCommand, this,
            [this](int line, const QString& why) {
                open(why, line);
                fail(QStringLiteral("the script stops here: ") + why);
            });
    connect(&engine, &ScriptEngine::runFinished, this, &JunitRecorder::finish);
    connect(&session.errors(), &ErrorRecords::errorRecorded, this,
            [this](const QString& record) { fail(record.trimmed()); });
    connect(&session.link(), &Link::linkLost, this,
            [this](const QString& reason) { fail(QStringLiteral("link lost: ") + reason); });
    // A transaction that sent nothing because it refused a field: what it logged says why.
    connect(&session.events(), &SessionEvents::pressRefused, this, &JunitRecorder::fail);
    connect(&session.events(), &SessionEvents::expectationStopped, this,
            [this](const QString& item) {
                fail(QStringLiteral("the wait for %1 was stopped before it ended").arg(item));
            });
    connect(&session.events(), &SessionEvents::transactionEnded, this,
            [this](SendResult result, const QString& message) {
                switch (result) {
                case SendResult::Acknowledged:
                    break;
                case SendResult::AcknowledgedByStaleAck:
                    fail(QStringLiteral("the PBX never acknowledged %1; the check-in counted the "
                                        "ACK its ENQ left behind")
                             .arg(message));
                    break;
                case SendResult::Failed:
                    // A hotel failure has its error record already; a voice-mail one has none.
                    if (m_case && m_case->failure.isEmpty())
                        fail(QStringLiteral("the PBX did not acknowledge %1").arg(message));
                    break;
                case SendResult::Interrupted:
                    fail(QStringLiteral("interrupted before the PBX acknowledged %1").arg(message));
                    break;
                }
            });
}

void JunitRecorder::open(const QString& name, int line) {
    close();
    m_case = JunitReport::Case{name, 0, {}, {}, line};
    m_started = m_session.pump().monotonicSeconds();
    m_outputLeftOut = 0;
}

void JunitRecorder::fail(const QString& why) {
    if (!m_case)
        return;
    if (!m_case->failure.isEmpty())
        m_case->failure += QLatin1Char('\n');
    m_case->failure += why;
}

void JunitRecorder::addOutput(QStringView text) {
    if (!m_case)
        return;
    // Past what a case keeps, the rest is only counted.
    if (m_case->output.size() >= maxOutput) {
        m_outputLeftOut += text.size();
        return;
    }
    QString lines = text.toString();
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    m_case->output += lines;
}

void JunitRecorder::close() {
    if (!m_case)
        return;
    m_case->seconds = m_session.pump().monotonicSeconds() - m_started;
    if (m_outputLeftOut > 0)
        m_case->output +=
            QStringLiteral("[%1 more characters of output left out]\n").arg(m_outputLeftOut);
    const JunitReport::Case closed = std::move(*m_case);
    m_case.reset();
    if (!closed.failure.isEmpty())
        ++m_failedCases;
    Q_EMIT caseClosed(closed);
}

void JunitRecorder::finish() {
    close();
}

void JunitRecorder::connectionFailed(const QString& link, const QString& why) {
    open(QStringLiteral("connect ") + link, 0);
    fail(why);
    close();
}

} // namespace larkspur
