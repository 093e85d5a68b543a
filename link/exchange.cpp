// The ENQ/ACK exchange: waits that judge what the receiver recorded, and the line bid.
#include "link/exchange.h"

#include "core/event_pump.h"
#include "core/pause.h"
#include "link/link.h"
#include "link/manual_commands.h"
#include "records/traffic_log.h"

#include <cmath>

namespace larkspur {

namespace {
constexpr float ackTimeoutSeconds = 5.0f;
constexpr float ackPollStepSeconds = 0.1f;
constexpr int pollAttempts = 5;
constexpr int enqAttempts = 5;

// The step of the wait: 0.1 s, but the last one ends just past the deadline, not up to a step
// later.
float pollStep(double deadline, double now) {
    // Whole milliseconds, rounded up, as the pause counts them.
    const double untilPassed = std::ceil((deadline - now) * 1000.0 + 1e-6) / 1000.0;
    return untilPassed > 0 && untilPassed < double(ackPollStepSeconds) ? float(untilPassed)
                                                                       : ackPollStepSeconds;
}
} // namespace

AckWait wait_for_ack(Link& link, bool show) {
    EventPump& pump = link.pump();
    ReceivedMessages::Reader arrivals = link.received().reader();
    AckWait result;
    {
        const Link::WaitGuard busy(link);
        // On the monotonic clock, in double precision: five seconds on the eighth day of a run
        // as on the first, across midnight too.
        const double deadline = pump.monotonicSeconds() + double(ackTimeoutSeconds);
        for (;;) {
            pump.processEvents();
            if (const std::optional<QString> first = arrivals.next()) {
                result.received = *first;
                result.outcome = *first == u"ACK" ? AckWait::Outcome::Acknowledged
                                                  : AckWait::Outcome::OtherAnswer;
                break;
            }
            if (link.interrupted())
                return {AckWait::Outcome::Interrupted, QString()};
            const double now = pump.monotonicSeconds();
            if (deadline < now)
                break;
            pause_seconds(pump, pollStep(deadline, now));
        }
    }
    if (show && result.outcome == AckWait::Outcome::TimedOut) {
        link.log().logLine(QStringLiteral("ERROR: WAITING FOR ACK - TIMEOUT"));
    } else if (show && result.outcome == AckWait::Outcome::OtherAnswer) {
        link.log().logLine(QStringLiteral("ERROR: DID NOT RECIEVE ACK FROM PBX"));
        link.log().logLine(QStringLiteral("       -> RECEIVED ") + result.received +
                           QStringLiteral(" INSTEAD"));
    }
    return result;
}

bool poll_for_ack(Link& link, bool show) {
    EventPump& pump = link.pump();
    ReceivedMessages::Reader arrivals = link.received().reader();
    {
        const Link::WaitGuard busy(link);
        for (int attempt = 1; attempt <= pollAttempts; ++attempt) {
            pump.processEvents();
            while (const std::optional<QString> message = arrivals.next()) {
                if (*message == u"ACK")
                    return true;
            }
            // Not cleared first: whatever the receiver recorded last answers the poll.
            if (link.received().lastControl() == u"ACK")
                return true;
            if (link.interrupted())
                return false;
            pause_seconds(pump, 1.0f);
        }
    }
    if (show)
        link.log().logLine(QStringLiteral("ERROR: WAITING FOR ACK - TIMEOUT"));
    return false;
}

AckWait send_enq(Link& link) {
    if (link.waitingForAck())
        return {AckWait::Outcome::Busy, QString()};
    AckWait bid;
    for (int attempt = 1; attempt <= enqAttempts; ++attempt) {
        cmd_enquiry_basic(link);
        bid = wait_for_ack(link, false);
        if (!bid.ackFailed() || bid.outcome == AckWait::Outcome::Interrupted)
            break;
    }
    return bid;
}

bool send_enq_counted(Link& link, qint16& attemptsLeft) {
    if (link.waitingForAck())
        return false;
    for (;;) {
        cmd_enquiry_basic(link);
        if (poll_for_ack(link, false))
            return true;
        --attemptsLeft;
        if (attemptsLeft == 0 || link.interrupted())
            return false;
    }
}

} // namespace larkspur
