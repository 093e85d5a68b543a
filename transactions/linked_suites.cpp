// Linked suites: a pilot and up to four member rooms that the PBX treats as one. Each STE
// button only picks the code; two senders build and send the message.
#include "core/operator_interface.h"
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"

#include <vector>

namespace larkspur {

namespace {

// A refused line bid is logged and recorded but not counted; five unanswered frames are.
const HotelMessageRule suiteRule = sendRule(QStringLiteral("STE"));

// One field of the message in its sent form, what follows it, and what is logged when invalid.
struct SuiteField {
    QString value;
    QString separator;
    QString invalidLine;
};

QString pilotForm(const Session& session, Field field) {
    const QString& typed = session.fields.text(field);
    return session.errorMode() ? typed : verify_string(typed, 5, QStringLiteral("R"));
}

QString memberForm(const Session& session, Field field) {
    const QString& typed = session.fields.text(field);
    return session.errorMode() ? typed : verify_member(trimBlanks(typed), 5);
}

// The body is the code and the fields with their separators, less its last character: the blank
// after the last member or pilot, or in error mode whatever was typed last.
void sendSuite(Session& session, const QString& code, const std::vector<SuiteField>& fields) {
    if (session.link.waitingForAck())
        return;
    if (!session.errorMode()) {
        for (const SuiteField& field : fields) {
            if (field.value == NotValid) {
                session.log.logLine(field.invalidLine);
                return;
            }
        }
    }
    QString body = code;
    for (const SuiteField& field : fields)
        body += field.value + field.separator;
    body.chop(1);
    int attempt = 1;
    if (session.reportSent(
            sendHotelMessage(session.link, session.errors, suiteRule, body, attempt, body), body))
        session.recorder.record(body);
}

const QString invalidPilot = QStringLiteral("Invalid link suite pilot number!");

} // namespace

void Session::send_linked_suite(const QString& code) {
    std::vector<SuiteField> suiteFields{
        {pilotForm(*this, Field::txt_ls_pilot), QStringLiteral(" "), invalidPilot}};
    for (int i = 0; i < 4; ++i)
        suiteFields.push_back({memberForm(*this, roomFields[i]), QString(),
                               QStringLiteral("Invalid member number %1!").arg(i + 1)});
    sendSuite(*this, code, suiteFields);
}

void Session::send_linked_suite_pilot(const QString& code) {
    sendSuite(*this, code,
              {{pilotForm(*this, Field::txt_ls_pilot), QStringLiteral(" "), invalidPilot},
               {pilotForm(*this, Field::txt_suite_1), QStringLiteral(" "),
                QStringLiteral("Invalid link suite pilot  number 2!")}});
}

void Session::cmd_ste0() {
    send_linked_suite(QStringLiteral("STE0 "));
}
void Session::cmd_ste1() {
    send_linked_suite(QStringLiteral("STE1 "));
}
void Session::cmd_ste2() {
    send_linked_suite(QStringLiteral("STE2 "));
}
void Session::cmd_ste3() {
    send_linked_suite(QStringLiteral("STE3 "));
}
void Session::cmd_ste4() {
    send_linked_suite(QStringLiteral("STE4 "));
}
void Session::cmd_ste5() {
    send_linked_suite_pilot(QStringLiteral("STE5 "));
}
void Session::cmd_ste6() {
    send_linked_suite(QStringLiteral("STE6 "));
}
void Session::cmd_ste7() {
    send_linked_suite(QStringLiteral("STE7 "));
}
void Session::cmd_ste8() {
    send_linked_suite(QStringLiteral("STE8 "));
}
void Session::cmd_steA() {
    send_linked_suite(QStringLiteral("STEA "));
}
void Session::cmd_steB() {
    send_linked_suite(QStringLiteral("STEB "));
}

void Session::cmd_ste_explain() {
    static const char* const rows[] = {
        "0 Create Linked Suite, Check In, No STS",
        "1 Create Linked Suite, Check In, STS Active",
        "2 Check In Suite(s)",
        "3 Check Out Suite(s)",
        "4 Breakdown Linked Suite, Check Out",
        "5 Change Pilot , No Check Out",
        "6 Add Suite(s), No Check In",
        "7 Delete Suite(s), No Check Out",
        "8 Create Liked Suite, No Check In, No Shared Telephone Service (STS)",
        "A Create Linked Suite, No Check In, STS Active",
        "B Breakdown Linked Suite, No Check Out",
    };
    QString text;
    for (const char* row : rows)
        text += QString::fromLatin1(row) + u'\n';
    operatorInterface.notify(text);
}

} // namespace larkspur
