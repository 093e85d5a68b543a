#include "transactions/voice_mail.h"

#include "core/operator_interface.h"
#include "protocol/message_catalogue.h"
#include "records/script_lines.h"
#include "transactions/session.h"

namespace larkspur {

namespace {

// Cuts the text box itself, so the operator sees what is sent; returns what is left.
QString keptText(Fields& fields, Field field, qsizetype kept) {
    if (fields.text(field).size() > kept)
        fields.setText(field, fields.text(field).left(kept));
    return fields.text(field);
}

} // namespace

bool inVmailMode(const Session& session) {
    return session.link.pmsMode != PmsMode::Hotel;
}

void send_vmail_operation(Session& session, VmailOperation operation) {
    const VmailMessage& message = *findVmailMessage(QString(QLatin1Char(char(operation))));
    // Only the mailbox check-in runs during a wait, keeps no copy of its frame and is silent
    // when acknowledged.
    const bool mailboxCheckIn = operation == VmailOperation::CheckIn;
    Link& link = session.link;
    if (!mailboxCheckIn && link.waitingForAck())
        return;
    const QString mailbox = keptText(session.fields, Field::txt_ls_pilot, mailboxWidth);
    if (mailbox.isEmpty()) {
        session.operatorInterface.notify(mailboxMissingNotice());
        return;
    }
    QString extra;
    QString logLine = message.label + mailbox;
    if (message.extra) {
        extra = keptText(session.fields, *message.extra, message.extraWidth);
        if (extra.isEmpty()) {
            session.operatorInterface.notify(message.extraMissing);
            return;
        }
        logLine += message.extraLabel + extra;
    }
    const QString frame = link.build_vmail_message(message.code, mailbox, extra);
    if (!mailboxCheckIn)
        session.keepVmailMessage(frame);
    const SendResult result = sendVmailFrame(link, frame, logLine, !mailboxCheckIn);
    session.reportSent(result, logLine);
    if (result == SendResult::Interrupted)
        return;
    session.recorder.record(vmailScriptLine(frame));
}

} // namespace larkspur
