// The two ways a transaction reaches the PBX: the hotel line bid with retried frames, and the
// voice-mail frame judged after a fixed pause.
#include "core/event_pump.h"
#include "core/pause.h"
#include "link/link.h"
#include "protocol/frame.h"
#include "protocol/vmail_frame.h"
#include "records/traffic_log.h"

namespace larkspur {

namespace {
constexpr int frameAttempts = 5;
constexpr float vmailAnswerSeconds = 2.0f;
const QString enqFailure = QStringLiteral(" PBX DID NOT ACKnowkledge ENQ message");
} // namespace

QString Link::build_vmail_message(const QString& code, const QString& field1,
                                  const QString& field2) {
    bool recognized = false;
    const QString frame =
        larkspur::build_vmail_message(code, field1, field2, protocolType, recognized);
    if (!recognized)
        m_log.logLine(QStringLiteral("Unrecognized command!"));
    return frame;
}

void Link::recordError(const QString& record, bool counts) {
    errorReport += record;
    if (counts)
        ++errorCount;
    Q_EMIT errorRecorded(record);
}

Link::SendResult Link::sendHotelMessage(const HotelMessageRule& rule, const QString& body,
                                        int& attempt) {
    return sendHotelMessage(rule, body, attempt, body);
}

Link::SendResult Link::sendHotelMessage(const HotelMessageRule& rule, const QString& body,
                                        int& attempt, const QString& reportedText) {
    send_enq();
    if (ackFailed && interrupted())
        return SendResult::Interrupted;
    if (ackFailed) {
        const QString stamp = Time_of_error(m_pump.currentDateTime());
        m_log.logLine(rule.enqFailureLogTimed ? stamp + enqFailure : enqFailure);
        recordError(stamp + enqFailure + QLatin1Char('\n'), rule.enqFailureCounts);
        return SendResult::Failed;
    }
    for (;;) {
        m_log.logLine(rule.logPrefix + body);
        send_text(plain_frame(body));
        wait_for_ack(false);
        if (ackFailed && interrupted())
            return SendResult::Interrupted;
        const bool answered = !ackFailed;
        const bool acknowledged = rule.ackNeedsPoll ? poll_for_ack(false) : answered;
        if (acknowledged)
            return answered ? SendResult::Acknowledged : SendResult::AcknowledgedByStaleAck;
        if (++attempt > frameAttempts) {
            const QString stamp = Time_of_error(m_pump.currentDateTime());
            m_log.logLine(stamp + rule.failureSentence);
            m_log.logLine(reportedText);
            recordError(stamp + rule.failureSentence + QLatin1Char('\n') + reportedText +
                            QStringLiteral("\n\n"),
                        true);
            return SendResult::Failed;
        }
    }
}

Link::SendResult Link::sendVmailFrame(const QString& frame, const QString& logLine,
                                      bool logSuccess) {
    vmailAcked = false;
    m_log.logLine(logLine);
    send_text(frame);
    pause_seconds(m_pump, vmailAnswerSeconds);
    if (!vmailAcked && interrupted())
        return SendResult::Interrupted;
    if (!vmailAcked)
        m_log.logLine(QStringLiteral("DID NOT RECEIVE ACK FROM PBX!"));
    else if (logSuccess)
        m_log.logLine(QStringLiteral("PBX ACKed"));
    return vmailAcked ? SendResult::Acknowledged : SendResult::Failed;
}

} // namespace larkspur
