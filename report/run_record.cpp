#include "report/run_record.h"

#include <algorithm>
#include <iterator>

namespace larkspur {

namespace {
QString attemptText(const Exchange& e) {
    return e.attempt > 1 ? QStringLiteral(", attempt %1").arg(e.attempt) : QString();
}

// What a failed step says in the failures list.
QString failureText(const ReportStep& step) {
    switch (step.kind) {
    case ReportStep::Kind::Exchange: {
        const Exchange& e = step.exchange;
        if (e.outcome == Exchange::Outcome::Refused)
            return QStringLiteral("NAK: %1%2 refused after %3 ms")
                .arg(e.description, attemptText(e))
                .arg(e.ms);
        return QStringLiteral("time-out: %1%2").arg(e.note, attemptText(e));
    }
    case ReportStep::Kind::Wait:
        return step.waitEnd == ReportStep::WaitEnd::Expired
                   ? QStringLiteral("failed wait: %1 did not come within %2 ms")
                         .arg(step.text)
                         .arg(step.ms)
                   : QStringLiteral("failed wait: the wait for %1 was stopped before it ended")
                         .arg(step.text);
    case ReportStep::Kind::CommandFailed:
        return QStringLiteral("failed command: ") + step.text;
    case ReportStep::Kind::Command:
        break;
    }
    return QString();
}
} // namespace

bool ReportStep::failed() const {
    switch (kind) {
    case Kind::Exchange:
        return exchange.outcome != Exchange::Outcome::Acknowledged;
    case Kind::Wait:
        return waitEnd != WaitEnd::Met;
    case Kind::CommandFailed:
        return true;
    case Kind::Command:
        break;
    }
    return false;
}

void RunRecord::commandStarted(const QString& text, int line, const QDateTime& time) {
    m_line = line;
    ReportStep step;
    step.kind = ReportStep::Kind::Command;
    step.time = time;
    step.text = text;
    add(std::move(step));
}

void RunRecord::commandEnded(int line, const QString& failure, const QDateTime& time) {
    ++m_counts.commands;
    if (failure.isEmpty())
        return;
    ++m_counts.failedCommands;
    m_line = line;
    ReportStep step;
    step.kind = ReportStep::Kind::CommandFailed;
    step.time = time;
    step.text = failure;
    add(std::move(step));
}

void RunRecord::exchange(const Exchange& exchange) {
    ++m_counts.exchanges;
    if (exchange.attempt > 1)
        ++m_counts.retries;
    if (exchange.outcome == Exchange::Outcome::Refused)
        ++m_counts.refused;
    else if (exchange.outcome == Exchange::Outcome::TimedOut)
        ++m_counts.unanswered;
    ReportStep step;
    step.kind = ReportStep::Kind::Exchange;
    step.time = exchange.time;
    step.exchange = exchange;
    add(std::move(step));
}

void RunRecord::wait(const QString& item, ReportStep::WaitEnd end, qint64 ms,
                     const QDateTime& time) {
    ++(end == ReportStep::WaitEnd::Met ? m_counts.waitsMet : m_counts.waitsFailed);
    ReportStep step;
    step.kind = ReportStep::Kind::Wait;
    step.time = time;
    step.text = item;
    step.waitEnd = end;
    step.ms = ms;
    add(std::move(step));
}

void RunRecord::add(ReportStep step) {
    step.number = ++m_number;
    step.line = m_line;
    const bool failed = step.failed();
    const bool listed = failed && m_failures.size() < m_limits.failures;
    if (listed) {
        m_failures.append({step.number, step.time, step.line, failureText(step)});
        // Its neighbours before it come out of the newest steps.
        const auto before = std::min<qsizetype>(m_limits.neighbours, qsizetype(m_recent.size()));
        std::move(m_recent.end() - before, m_recent.end(), std::back_inserter(m_kept));
        m_recent.erase(m_recent.end() - before, m_recent.end());
        m_kept.append(std::move(step));
        m_keepAfter = m_limits.neighbours;
        return;
    }
    if (failed)
        ++m_failuresLeftOut;
    if (step.number <= m_limits.head || m_keepAfter > 0) {
        m_keepAfter = std::max<qsizetype>(0, m_keepAfter - 1);
        m_kept.append(std::move(step));
        return;
    }
    m_recent.push_back(std::move(step));
    if (qsizetype(m_recent.size()) > m_limits.tail)
        m_recent.pop_front();
}

QList<ReportStep> RunRecord::steps() const {
    QList<ReportStep> steps = m_kept;
    steps.append(QList<ReportStep>(m_recent.begin(), m_recent.end()));
    // The newest steps may hold older ones than the neighbours of a failure kept after them.
    std::sort(steps.begin(), steps.end(),
              [](const ReportStep& a, const ReportStep& b) { return a.number < b.number; });
    return steps;
}

} // namespace larkspur
