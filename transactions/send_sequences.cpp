// The two ways a transaction reaches the PBX: the hotel line bid with retried frames, and the
// voice-mail frame judged after a fixed pause.
#include "transactions/send_sequences.h"

#include "core/event_pump.h"
#include "core/pause.h"
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
    link.send_enq();
    if (link.ackFailed() && link.interrupted())
        return SendResult::Interrupted;
    if (link.ackFailed()) {
        const QString stamp = Time_of_error(pump.currentDateTime());
        log.logLine(rule.enqFailureLogTimed ? stamp + enqFailure : enqFailure);
        errors.recordError(stamp + enqFailure + QLatin1Char('\n'), rule.enqFailureCounts);
        return SendResult::Failed;
    }
    for (;;) {
        log.logLine(rule.logPrefix + body);
        link.send_text(plain_frame(body));
        link.wait_for_ack(false);
        if (link.ackFailed() && link.interrupted())
            return SendResult::Interrupted;
        const bool answered = !link.ackFailed();
        const bool acknowledged = rule.ackNeedsPoll ? link.poll_for_ack(false) : answered;
        if (acknowledged)
            return answered ? SendResult::Acknowledged : SendResult::AcknowledgedByStaleAck;
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
    link.expectVmailAck();
    log.logLine(logLine);
    link.send_text(frame);
    pause_seconds(link.pump(), vmailAnswerSeconds);
    if (!link.vmailAcked() && link.interrupted())
        return SendResult::Interrupted;
    if (!link.vmailAcked())
        log.logLine(QStringLiteral("DID NOT RECEIVE ACK FROM PBX!"));
    else if (logSuccess)
        log.logLine(QStringLiteral("PBX ACKed"));
    return link.vmailAcked() ? SendResult::Acknowledged : SendResult::Failed;
}

} // namespace larkspur
