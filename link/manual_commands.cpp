#include "link/link.h"
#include "protocol/frame.h"
#include "records/traffic_log.h"

namespace larkspur {

void Link::cmd_ack() {
    m_log.logLine(QStringLiteral("Sending -->    ACK"));
    send_text(QString(QChar(ctl::ACK)));
}

void Link::cmd_nak() {
    if (waitingForAck())
        return;
    m_log.logLine(QStringLiteral("Sending -->    NAK"));
    send_text(QString(QChar(ctl::NAK)));
}

void Link::cmd_enquiry_basic() {
    m_log.logLine(QStringLiteral("Sending -->    ENQ"));
    send_text(QString(QChar(ctl::ENQ)));
}

void Link::cmd_ayt() {
    if (waitingForAck())
        return;
    m_log.logLine(QStringLiteral("Sending -->    AREYUTHERE"));
    send_text(plain_frame(QStringLiteral("AREYUTHERE")));
}

void Link::cmd_grs() {
    if (waitingForAck())
        return;
    m_log.logLine(QStringLiteral("Sending -->    GRS"));
    send_text(plain_frame(QStringLiteral("GRS       ")));
}

void Link::cmd_end() {
    if (waitingForAck())
        return;
    m_log.logLine(QStringLiteral("Sending -->    END"));
    send_text(plain_frame(QStringLiteral("END       ")));
}

} // namespace larkspur
