// The expected-message waits. The comparison is with what the receiver recorded, exactly: the
// control names as the receiver spells them, data messages from STX to ETX.
#include "script/expectation_waits.h"

#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "records/script_lines.h"
#include "transactions/field_validation.h"
#include "transactions/session.h"

namespace larkspur {

namespace {
// Whether `lastControl`, the receiver's name for a message, is the one the wait expects.
bool matches(Session& session, const QString& item, const QString& lastControl) {
    if (lastControl == item)
        return true;
    const ExpectationItem* expected = findExpectationItem(item);
    if (!expected || !expected->hasRoom())
        return false;
    const QString room = roomForm(session.fields().text(Field::txt_suite_1));
    return lastControl == start_of_text() + expected->expected + room + end_of_text();
}
} // namespace

QString waitDigit(const QString& text) {
    return text.size() == 1 && text.at(0) >= u'0' && text.at(0) <= u'9' ? text
                                                                        : QStringLiteral("5");
}

int waitSeconds(const QString& text) {
    return waitDigit(text).at(0).digitValue();
}

bool isExpectationItem(const QString& item) {
    return findExpectationItem(item) != nullptr;
}

void runExpectationWait(Session& session, WaitKind kind, const QString& item, const QString& given,
                        bool& stopScript) {
    Link& link = session.link();
    EventPump& pump = session.pump();
    const Link::WaitGuard busy(link);
    // Only what arrives from now on counts.
    ReceivedMessages::Reader arrivals = link.received().reader();
    const QString digit = waitDigit(given);
    const int seconds = waitSeconds(digit);
    const double deadline = pump.monotonicSeconds() + seconds;
    const QDateTime started = pump.currentDateTime();
    const bool plain = kind == WaitKind::Plain;
    session.log().logLine(
        (plain ? QStringLiteral("waiting for --> ") : QStringLiteral("send notify for --> ")) +
        item);
    Q_EMIT session.events().expectationStarted(item, seconds);

    enum class End { Success, TimedOut, Stopped } end;
    for (;;) {
        pump.processEvents();
        bool met = false;
        while (const std::optional<QString> lastControl = arrivals.next()) {
            if (matches(session, item, *lastControl)) {
                met = true;
                break;
            }
            if (plain) {
                session.log().logLine(QStringLiteral("ERROR occurred: did not recieve --> ") +
                                      item + carriage_return() +
                                      QStringLiteral("but recieved --> ") + *lastControl);
                session.errors().recordError(
                    Time_of_error(pump.currentDateTime()) +
                        QStringLiteral(": ERROR occurred while waiting for --> ") + item +
                        QStringLiteral("\nbut instead receieved --> ") + *lastControl +
                        QStringLiteral("\n\n"),
                    false);
            }
        }
        if (met) {
            end = End::Success;
            break;
        }
        const double now = pump.monotonicSeconds();
        if (seconds != 0 && now > deadline) {
            end = End::TimedOut;
            break;
        }
        if (stopScript || link.interrupted()) {
            end = End::Stopped;
            break;
        }
        // Block until something arrives or the deadline passes; a wait without limit looks at
        // the stop flag, which only an event can set.
        const int untilDeadlineMs = seconds != 0 ? int((deadline - now) * 1000.0) + 1 : 60'000;
        pump.waitForEvent(qMax(0, untilDeadlineMs));
    }
    // The wait's time is the PBX's: the success box below holds the console for the operator.
    const qint64 waitedMs = started.msecsTo(pump.currentDateTime());

    if (end == End::Success) {
        const QString success = QStringLiteral("successfully received --> ") + item;
        session.operatorInterface().notify(success);
        session.log().logLine(success);
        const QString room = session.fields().text(Field::txt_suite_1);
        session.recorder().record(expectationScriptLine(!plain, item, roomForm(room), digit));
    } else if (end == End::TimedOut) {
        session.log().logLine(QStringLiteral("Time expired.  Did not receive--> ") + item);
        session.errors().recordError(Time_of_error(pump.currentDateTime()) +
                                         QStringLiteral(": Time expired.  Did not receive--> ") +
                                         item + QStringLiteral("\n\n"),
                                     false);
    }
    if (end != End::Stopped)
        Q_EMIT session.events().expectationEnded(item, end == End::Success, waitedMs);
    else
        Q_EMIT session.events().expectationStopped(item);
    stopScript = false;
}

} // namespace larkspur
