#include "transactions/voice_mail.h"

#include "protocol/message_catalogue.h"
#include "protocol/vmail_frame.h"
#include "records/script_lines.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/session_press.h"

namespace larkspur {

namespace {

// A field longer than its place is cut in its text box itself, so the operator sees what is
// sent; returns what is left.
QString keptText(const PressInput& input, PressSteps& steps, Field field, qsizetype kept) {
    const QString typed = input.text(field);
    if (typed.size() <= kept)
        return typed;
    steps.cut(field, typed.left(kept));
    return typed.left(kept);
}

// Only the mailbox check-in runs during a wait, keeps no copy of its frame and is silent when
// acknowledged. The frame is recorded whether or not the PBX acknowledged it.
class VmailPress : public SessionPress {
public:
    VmailPress(Session& session, bool mailboxCheckIn)
        : SessionPress(session), m_mailboxCheckIn(mailboxCheckIn) {}

    void cut(Field field, const QString& kept) override { m_session.fields().setText(field, kept); }

protected:
    bool deliver(const PressMessage& message) override {
        if (!m_mailboxCheckIn)
            keepVmailMessage(message.body);
        const SendResult result =
            sendVmailFrame(m_session.link(), message.body, message.reported, !m_mailboxCheckIn);
        report(result, message.reported);
        if (result == SendResult::Interrupted)
            return false;
        m_session.recorder().record(vmailScriptLine(message.body));
        return true;
    }

private:
    bool m_mailboxCheckIn;
};

} // namespace

void pressVmail(const QString& code, const PressInput& input, PressSteps& steps) {
    const VmailMessage& message = *findVmailMessage(code);
    const QString mailbox = keptText(input, steps, Field::txt_ls_pilot, mailboxWidth);
    if (mailbox.isEmpty()) {
        steps.refuse({Field::txt_ls_pilot, mailboxMissingNotice(), true});
        return;
    }
    QString extra;
    PressMessage out;
    out.reported = message.label + mailbox;
    if (message.extra) {
        extra = keptText(input, steps, *message.extra, message.extraWidth);
        if (extra.isEmpty()) {
            steps.refuse({*message.extra, message.extraMissing, true});
            return;
        }
        out.reported += message.extraLabel + extra;
    }
    bool recognized = false;
    out.body = build_vmail_message(message.code, mailbox, extra, input.protocol, recognized);
    // The frame holds STX and the code, then each field in its place.
    out.fields.append({Field::txt_ls_pilot, out.body.mid(2, mailboxWidth)});
    if (message.extra)
        out.fields.append({*message.extra, out.body.mid(2 + mailboxWidth, message.extraWidth)});
    steps.send(out);
}

void send_vmail_operation(Session& session, const QString& code) {
    // The mailbox check-in alone has no guard.
    const bool mailboxCheckIn = code == u"2";
    if (!mailboxCheckIn && session.link().waitingForAck())
        return;
    VmailPress press(session, mailboxCheckIn);
    pressVmail(code, sessionInput(session), press);
    press.finish();
}

} // namespace larkspur
