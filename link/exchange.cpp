// The ENQ/ACK exchange: waits that judge what the receiver recorded, and the line bid.
#include "core/event_pump.h"
#include "core/pause.h"
#include "link/link.h"
#include "protocol/frame.h"
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

QString enqText() {
    return QString(QChar(ctl::ENQ));
}
} // namespace

void Link::send_text(const QString& text) {
    Transport& transport = activeTransport();
    if (!transport.isOpen()) {
        Q_EMIT notSent();
        return;
    }
    const QByteArray bytes = text.toLatin1();
    transport.write(bytes);
    Q_EMIT bytesSent(bytes);
}

bool Link::interrupted() const {
    return m_lost || m_pump.stopRequested();
}

void Link::wait_for_ack(bool show) {
    m_ackReceived = false;
    m_ackFailed = false;
    bool timedOut = false;
    {
        const WaitGuard busy(*this);
        // On the monotonic clock, in double precision: five seconds on the eighth day of a run
        // as on the first, across midnight too.
        const double deadline = m_pump.monotonicSeconds() + double(ackTimeoutSeconds);
        for (;;) {
            m_pump.processEvents();
            if (m_ackReceived)
                break;
            if (interrupted()) {
                m_ackFailed = true;
                return;
            }
            const double now = m_pump.monotonicSeconds();
            if (deadline < now) {
                timedOut = true;
                break;
            }
            pause_seconds(m_pump, pollStep(deadline, now));
        }
    }

    if (timedOut) {
        if (show)
            m_log.logLine(QStringLiteral("ERROR: WAITING FOR ACK - TIMEOUT"));
        m_ackFailed = true;
    } else if (m_lastControl != u"ACK") {
        if (show) {
            m_log.logLine(QStringLiteral("ERROR: DID NOT RECIEVE ACK FROM PBX"));
            m_log.logLine(QStringLiteral("       -> RECEIVED ") + m_lastControl +
                          QStringLiteral(" INSTEAD"));
        }
        m_ackFailed = true;
    }
}

bool Link::poll_for_ack(bool show) {
    {
        const WaitGuard busy(*this);
        for (int attempt = 1; attempt <= pollAttempts; ++attempt) {
            m_pump.processEvents();
            // Not cleared first: whatever the receiver recorded last answers the poll.
            if (m_lastControl == u"ACK")
                return true;
            if (interrupted())
                return false;
            pause_seconds(m_pump, 1.0f);
        }
    }
    if (show)
        m_log.logLine(QStringLiteral("ERROR: WAITING FOR ACK - TIMEOUT"));
    return false;
}

void Link::send_enq() {
    if (waitingForAck())
        return;
    for (int attempt = 1; attempt <= enqAttempts; ++attempt) {
        m_log.logLine(QStringLiteral("Sending -->    ENQ"));
        send_text(enqText());
        wait_for_ack(false);
        if (!m_ackFailed || interrupted())
            return;
    }
}

bool Link::send_enq_counted(qint16& attemptsLeft) {
    if (waitingForAck())
        return false;
    for (;;) {
        m_log.logLine(QStringLiteral("Sending -->    ENQ"));
        send_text(enqText());
        if (poll_for_ack(false))
            return true;
        --attemptsLeft;
        if (attemptsLeft == 0 || interrupted())
            return false;
    }
}

} // namespace larkspur
