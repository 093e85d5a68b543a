#include "link/manual_commands.h"

#include "link/link.h"
#include "protocol/frame.h"
#include "records/traffic_log.h"

namespace larkspur {

namespace {
// Logs "Sending -->    " and `shown`, then sends `text`; nothing while a wait runs when guarded.
void send(Link& link, bool guarded, const QString& shown, const QString& text) {
    if (guarded && link.waitingForAck())
        return;
    link.log().logLine(QStringLiteral("Sending -->    ") + shown);
    link.send_text(text);
}
} // namespace

void cmd_ack(Link& link) {
    send(link, false, QStringLiteral("ACK"), QString(QChar(ctl::ACK)));
}

void cmd_nak(Link& link) {
    send(link, true, QStringLiteral("NAK"), QString(QChar(ctl::NAK)));
}

void cmd_enquiry_basic(Link& link) {
    send(link, false, QStringLiteral("ENQ"), QString(QChar(ctl::ENQ)));
}

void cmd_ayt(Link& link) {
    send(link, true, QStringLiteral("AREYUTHERE"), plain_frame(QStringLiteral("AREYUTHERE")));
}

void cmd_grs(Link& link) {
    send(link, true, QStringLiteral("GRS"), plain_frame(QStringLiteral("GRS       ")));
}

void cmd_end(Link& link) {
    send(link, true, QStringLiteral("END"), plain_frame(QStringLiteral("END       ")));
}

} // namespace larkspur
