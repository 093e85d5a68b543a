#pragma once

#include "records/exchange_pairing.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <deque>

namespace larkspur {

// One row of the conversation a report draws.
struct ReportStep {
    enum class Kind {
        Command,       // a script command starts: `text` is its line as played
        Exchange,      // a bid or frame and its answer
        Wait,          // an expected-message wait: `text` is its item
        CommandFailed, // a command failed: `text` says why
    };
    enum class WaitEnd { Met, Expired, Stopped };

    Kind kind = Kind::Command;
    qint64 number = 0; // its place in the whole conversation, from 1
    QDateTime time;
    int line = 0; // the script line it came from; 0 when none
    QString text;
    Exchange exchange;
    WaitEnd waitEnd = WaitEnd::Met;
    qint64 ms = 0; // a wait's length, but for a stopped one

    bool failed() const;
};

// What went wrong, first on the page, pointing at its step.
struct ReportFailure {
    qint64 step = 0;
    QDateTime time;
    int line = 0;
    QString what;
};

// The conversation of a run or a tap session, as it goes, in bounded memory: the first steps,
// the last, and every failure with its neighbours; the rest is only counted.
class RunRecord {
public:
    struct Limits {
        qsizetype head = 300;
        qsizetype tail = 300;
        qsizetype neighbours = 3;
        qsizetype failures = 1000; // failures listed; the rest are counted
    };
    struct Counts {
        qint64 commands = 0;
        qint64 failedCommands = 0;
        qint64 exchanges = 0;
        qint64 refused = 0;
        qint64 unanswered = 0;
        qint64 retries = 0;
        qint64 waitsMet = 0;
        qint64 waitsFailed = 0;
    };

    explicit RunRecord(Limits limits) : m_limits(limits) {}
    RunRecord() : RunRecord(Limits{}) {}

    void commandStarted(const QString& text, int line, const QDateTime& time);
    // Every command ends here, counted as the JUnit report counts its cases; `failure` is empty
    // when it passed.
    void commandEnded(int line, const QString& failure, const QDateTime& time);
    void exchange(const Exchange& exchange);
    void wait(const QString& item, ReportStep::WaitEnd end, qint64 ms, const QDateTime& time);

    // The steps kept, in order; a gap in their numbers was left out.
    QList<ReportStep> steps() const;
    const QList<ReportFailure>& failures() const { return m_failures; }
    qint64 failuresLeftOut() const { return m_failuresLeftOut; }
    qint64 stepCount() const { return m_number; }
    const Counts& counts() const { return m_counts; }

private:
    void add(ReportStep step);

    Limits m_limits;
    Counts m_counts;
    qint64 m_number = 0;
    int m_line = 0; // the script line of the command under way
    QList<ReportStep> m_kept;
    std::deque<ReportStep> m_recent; // the newest steps not kept yet
    qsizetype m_keepAfter = 0;       // steps still to keep after the last failure
    QList<ReportFailure> m_failures;
    qint64 m_failuresLeftOut = 0;
};

} // namespace larkspur
