// The two ways a transaction reaches the PBX: the hotel line bid with retried frames, and the
// voice-mail frame judged after a fixed pause.
#include "transactions/send_sequences.h"

#include "core/event_pump.h"
#include "core/pause.h"
#include "link/exchange.h"
#include "link/link.h"
#include "protocol/frame.h"
#include "records/error_records.h"
#include "records/traffic_log.h"

namespace larkspur {

namespace {
constexpr int frameAttempts = 5;
constexpr float vmailAnswerSeconds = 2.0f;
const QString enqFailure = QStringLiteral(" PBX DID NOT ACKnowkledge ENQ message");
} // namespace

SendResult sendHotelMessage(Link& link, ErrorRecords& errors, const HotelMessageRule& rule,
                            const QString& body, int& attempt, const QString& reportedText) {
    EventPump& pump = link.pump();
    TrafficLog& log = link.log();
    const AckWait bid = send_enq(link);
    if (bid.outcome == AckWait::Outcome::Interrupted || bid.outcome == AckWait::Outcome::Busy)
        return SendResult::Interrupted;
    if (bid.ackFailed()) {
        const QString stamp = Time_of_error(pump.currentDateTime());
        log.logLine(rule.enqFailureLogTimed ? stamp + enqFailure : enqFailure);
        errors.recordError(stamp + enqFailure + QLatin1Char('\n'), rule.enqFailureCounts);
        return SendResult::Failed;
    }
    for (;;) {
        log.logLine(rule.logPrefix + body);
        link.send_text(plain_frame(body));
        const AckWait frame = wait_for_ack(link, false);
        if (frame.outcome == AckWait::Outcome::Interrupted)
            return SendResult::Interrupted;
        const bool acknowledged =
            rule.ackNeedsPoll ? poll_for_ack(link, false) : !frame.ackFailed();
        if (acknowledged)
            return frame.ackFailed() ? SendResult::AcknowledgedByStaleAck
                                     : SendResult::Acknowledged;
        if (++attempt > frameAttempts) {
            const QString stamp = Time_of_error(pump.currentDateTime());
            log.logLine(stamp + rule.failureSentence);
            log.logLine(reportedText);
            errors.recordError(stamp + rule.failureSentence + QLatin1Char('\n') + reportedText +
                                   QStringLiteral("\n\n"),
                               true);
            return SendResult::Failed;
        }
    }
}

SendResult sendVmailFrame(Link& link, const QString& frame, const QString& logLine,
                          bool logSuccess) {
    TrafficLog& log = link.log();
    // Only an ACK that comes after the frame answers it: `vmailAcked`.
    ReceivedMessages::Reader arrivals = link.received().reader();
    log.logLine(logLine);
    link.send_text(frame);
    pause_seconds(link.pump(), vmailAnswerSeconds);
    bool vmailAcked = false;
    while (const std::optional<QString> message = arrivals.next())
        vmailAcked = vmailAcked || *message == u"ACK";
    if (!vmailAcked && link.interrupted())
        return SendResult::Interrupted;
    if (!vmailAcked)
        log.logLine(QStringLiteral("DID NOT RECEIVE ACK FROM PBX!"));
    else if (logSuccess)
        log.logLine(QStringLiteral("PBX ACKed"));
    return vmailAcked ? SendResult::Acknowledged : SendResult::Failed;
}

} // namespace larkspur
