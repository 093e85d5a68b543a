// The expected-message waits. The comparison is with what the receiver recorded, exactly: the
// control names as the receiver spells them, data messages from STX to ETX.
#include "script/expectation_waits.h"

#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "protocol/frame.h"
#include "transactions/field_validation.h"
#include "transactions/session.h"

namespace larkspur {

namespace {
const QStringList controlItems = {"ack", "nak", "enq", "rti"};

struct RoomItem {
    const char* item;
    const char* expected;       // the message text before the room
    const char* recordedPlain;  // after "WAIT "
    const char* recordedNotice; // after "NTFY "
};

// Checked in this order; "alt" records differently for the two waits, and the notice form is
// one the runner passes over.
const RoomItem roomItems[] = {
    {"mr", "MR 0001", "MR 0001", "MR 0001"}, {"mw0", "MW 0 ", "MW 0 ", "MW 0 "},
    {"mw1", "MW 1 ", "MW 1 ", "MW 1 "},      {"sts1", "STS1 ", "STS1 ", "STS1 "},
    {"sts2", "STS2 ", "STS2 ", "STS2 "},     {"sts3", "STS3 ", "STS3 ", "STS3 "},
    {"sts4", "STS4 ", "STS4 ", "STS4 "},     {"sts5", "STS5 ", "STS5 ", "STS5 "},
    {"sts6", "STS6 ", "STS6 ", "STS6 "},     {"sts7", "STS7 ", "STS7 ", "STS7 "},
    {"sts8", "STS8 ", "STS8 ", "STS8 "},     {"sts9", "STS9 ", "STS9 ", "STS9 "},
    {"alt", "ALT1 ", "ALT ", "ATL "},
};

const RoomItem* roomItem(const QString& item) {
    for (const RoomItem& r : roomItems)
        if (item == QLatin1String(r.item))
            return &r;
    return nullptr;
}

// 0 means no limit; a digit that is not one counts as 5, and is recorded so.
int waitSeconds(QString& digit) {
    if (digit.size() == 1 && digit.at(0).isDigit() && digit.at(0).unicode() < 128)
        return digit.at(0).digitValue();
    digit = QStringLiteral("5");
    return 5;
}

bool matches(const Session& session, const QString& item) {
    const Link& link = session.link;
    if (link.lastControl() == item)
        return true;
    const RoomItem* expected = roomItem(item);
    if (!expected)
        return false;
    const QString room =
        verify_string(session.fields.text(Field::txt_suite_1), 5, QStringLiteral("R"));
    return link.lastControl() ==
           start_of_text() + QLatin1String(expected->expected) + room + end_of_text();
}
} // namespace

bool isExpectationItem(const QString& item) {
    return controlItems.contains(item) || roomItem(item) != nullptr;
}

QString recordedExpectation(const QString& item, const QString& room, bool withNotice) {
    const RoomItem* r = roomItem(item);
    if (!r)
        return item;
    return QLatin1String(withNotice ? r->recordedNotice : r->recordedPlain) + room;
}

void runExpectationWait(Session& session, WaitKind kind, const QString& item, QString digit) {
    Link& link = session.link;
    EventPump& pump = session.pump;
    const Link::WaitGuard busy(link);
    link.clearAckReceived();
    const int seconds = waitSeconds(digit);
    const double deadline = pump.secondsSinceMidnight() + seconds;
    const QDateTime started = pump.currentDateTime();
    const bool plain = kind == WaitKind::Plain;
    session.log.logLine(
        (plain ? QStringLiteral("waiting for --> ") : QStringLiteral("send notify for --> ")) +
        item);

    enum class End { Success, TimedOut, Stopped } end;
    for (;;) {
        pump.processEvents();
        if (link.ackReceived() && matches(session, item)) {
            end = End::Success;
            break;
        }
        if (link.ackReceived()) {
            if (plain) {
                session.log.logLine(QStringLiteral("ERROR occurred: did not recieve --> ") + item +
                                    carriage_return() + QStringLiteral("but recieved --> ") +
                                    link.lastControl());
                session.errors.recordError(
                    Time_of_error(pump.currentDateTime()) +
                        QStringLiteral(": ERROR occurred while waiting for --> ") + item +
                        QStringLiteral("\nbut instead receieved --> ") + link.lastControl() +
                        QStringLiteral("\n\n"),
                    false);
            }
            link.clearAckReceived();
        }
        const double now = pump.secondsSinceMidnight();
        if (seconds != 0 && now > deadline) {
            end = End::TimedOut;
            break;
        }
        if (session.stopScript() || link.interrupted()) {
            end = End::Stopped;
            break;
        }
        // Block until something arrives or the deadline passes; a wait without limit looks at
        // the stop flag, which only an event can set.
        const int untilDeadlineMs = seconds != 0 ? int((deadline - now) * 1000.0) + 1 : 60'000;
        pump.waitForEvent(qMax(0, untilDeadlineMs));
    }

    if (end == End::Success) {
        const QString success = QStringLiteral("successfully received --> ") + item;
        session.operatorInterface.notify(success);
        session.log.logLine(success);
        const QString room = session.fields.text(Field::txt_suite_1);
        session.recorder.record(
            (plain ? QStringLiteral("WAIT ") : QStringLiteral("NTFY ")) +
            recordedExpectation(item, verify_string(room, 5, QStringLiteral("R")), !plain) +
            QLatin1Char(' ') + digit);
    } else if (end == End::TimedOut) {
        session.log.logLine(QStringLiteral("Time expired.  Did not receive--> ") + item);
        session.errors.recordError(Time_of_error(pump.currentDateTime()) +
                                       QStringLiteral(": Time expired.  Did not receive--> ") +
                                       item + QStringLiteral("\n\n"),
                                   false);
    }
    if (end != End::Stopped)
        Q_EMIT session.expectationEnded(item, end == End::Success,
                                        started.msecsTo(pump.currentDateTime()));
    else
        Q_EMIT session.expectationStopped(item);
    session.clearScriptStop();
}

} // namespace larkspur
