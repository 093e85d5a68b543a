#include "transactions/voice_mail.h"

#include "core/operator_interface.h"
#include "transactions/session.h"

#include <iterator>
#include <optional>

namespace larkspur {

namespace {

// What one mailbox operation sends and says.
struct VmailOperationRule {
    QString code;
    QString label; // log line head, before the mailbox
    // The second field, its longest kept length, its log label and its notice when empty.
    std::optional<Field> extra = std::nullopt;
    qsizetype extraKept = 0;
    QString extraLabel = {};
    QString extraMissing = {};
    // Only the mailbox check-in runs during a wait, keeps no copy of its frame and is silent
    // when acknowledged.
    bool guarded = true;
    bool keepsFrame = true;
    bool reportsAck = true;
};

const QString mailboxMissing = QStringLiteral("Please enter a Mailbox Number");
constexpr qsizetype mailboxKept = 6;

const VmailOperationRule& ruleOf(VmailOperation operation) {
    static const VmailOperationRule rules[] = {
        {.code = QStringLiteral("2"),
         .label = QStringLiteral("CHECK IN: "),
         .guarded = false,
         .keepsFrame = false,
         .reportsAck = false},
        {.code = QStringLiteral("3"), .label = QStringLiteral("CHECK OUT: ")},
        {.code = QStringLiteral("6"), .label = QStringLiteral("QUERY MW STATUS: ")},
        {.code = QStringLiteral("7"),
         .label = QStringLiteral("MOVE MAILBOX: "),
         .extra = Field::txt_suite_2,
         .extraKept = 6,
         .extraLabel = QStringLiteral(" TO: "),
         .extraMissing = mailboxMissing},
        {.code = QStringLiteral("9"),
         .label = QStringLiteral("TEXT MESSAGE MW: "),
         .extra = Field::txt_department,
         .extraKept = 2,
         .extraLabel = QStringLiteral(" Unread: "),
         .extraMissing = QStringLiteral("Please enter a Number for 'Unread'")},
        {.code = QStringLiteral("A"),
         .label = QStringLiteral("CHECK IN (Passwd): "),
         .extra = Field::txt_suite_1,
         .extraKept = 6,
         .extraLabel = QStringLiteral(" PASSCODE: "),
         .extraMissing = QStringLiteral("Please enter a Number for the PASCODE")},
        {.code = QStringLiteral("B"),
         .label = QStringLiteral("CHANGE PASSCODE: "),
         .extra = Field::txt_suite_1,
         .extraKept = 6,
         .extraLabel = QStringLiteral(" PASSCODE: "),
         .extraMissing = QStringLiteral("Please enter a Number for the PASSCODE")},
        {.code = QStringLiteral("D"),
         .label = QStringLiteral("CHANGE ID: "),
         .extra = Field::txt_suite_3,
         .extraKept = 6,
         .extraLabel = QStringLiteral(" ID: "),
         .extraMissing = QStringLiteral("Please enter a Number for new ID")},
        {.code = QStringLiteral("8"),
         .label = QStringLiteral("MODIFY FCOS: "),
         .extra = Field::txt_suite_4,
         .extraKept = 2,
         .extraLabel = QStringLiteral(" FCOS: "),
         .extraMissing = QStringLiteral("Please enter a Number for new FCOS")},
    };
    static_assert(std::size(rules) == size_t(VmailOperation::ModifyFcos) + 1);
    return rules[size_t(operation)];
}

// Cuts the text box itself, so the operator sees what is sent; returns what is left.
QString keptText(Fields& fields, Field field, qsizetype kept) {
    if (fields.text(field).size() > kept)
        fields.setText(field, fields.text(field).left(kept));
    return fields.text(field);
}

} // namespace

bool inVmailMode(const Session& session) {
    return session.link.pmsMode != u"HOTEL";
}

void send_vmail_operation(Session& session, VmailOperation operation) {
    const VmailOperationRule& rule = ruleOf(operation);
    Link& link = session.link;
    if (rule.guarded && link.waitingForAck())
        return;
    const QString mailbox = keptText(session.fields, Field::txt_ls_pilot, mailboxKept);
    if (mailbox.isEmpty()) {
        session.operatorInterface.notify(mailboxMissing);
        return;
    }
    QString extra;
    QString logLine = rule.label + mailbox;
    if (rule.extra) {
        extra = keptText(session.fields, *rule.extra, rule.extraKept);
        if (extra.isEmpty()) {
            session.operatorInterface.notify(rule.extraMissing);
            return;
        }
        logLine += rule.extraLabel + extra;
    }
    const QString frame = link.build_vmail_message(rule.code, mailbox, extra);
    if (rule.keepsFrame)
        session.keepVmailMessage(frame);
    const SendResult result = sendVmailFrame(link, frame, logLine, rule.reportsAck);
    session.reportSent(result, logLine);
    if (result == SendResult::Interrupted)
        return;
    // The "~" marks a ready-made frame for the script runner.
    session.recorder.record(frame + QLatin1Char('~'));
}

} // namespace larkspur
