// Departments and locations: a ten-character text attached to a room. The department buttons
// carry mailbox operations in voice-mail mode; the location buttons are hidden there.
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

namespace {

QString textForm(const QString& trimmed) {
    return verify_string(trimmed, 10, QStringLiteral("L"));
}

const ExtraField department{Field::txt_department, textForm, QStringLiteral("Invalid Department!")};
const ExtraField location{Field::txt_location, textForm, QStringLiteral("Invalid Location!")};

HotelTransaction textTransaction(const ExtraField& text, const QString& logPrefix,
                                 const QString& header, const QString& failureSentence) {
    return {.rule = {.logPrefix = logPrefix, .failureSentence = failureSentence},
            .body = headerTextAndRoom(header),
            .extras = {text}};
}

const HotelTransaction addDepartment =
    textTransaction(department, QStringLiteral("Sending  -->"), QStringLiteral("DPT1 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the add department message:"));
const HotelTransaction replaceDepartment =
    textTransaction(department, QStringLiteral("Sending   -->"), QStringLiteral("DPT2 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the replace department message:"));
const HotelTransaction deleteDepartment =
    textTransaction(department, QStringLiteral("Sending   -->"), QStringLiteral("DPT3 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the delete department message:"));
const HotelTransaction addLocation =
    textTransaction(location, QStringLiteral("Sending  -->"), QStringLiteral("LOC1 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the add location message:"));
const HotelTransaction replaceLocation =
    textTransaction(location, QStringLiteral("Sending  -->"), QStringLiteral("LOC2 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the replace location message:"));
const HotelTransaction deleteLocation =
    textTransaction(location, QStringLiteral("Sending  -->"), QStringLiteral("LOC3 "),
                    QStringLiteral("-> PBX DID NOT ACKnowkledge the delete location message:"));

} // namespace

void Session::cmd_dept() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ChangePasscode);
    else
        sendToRooms(*this, addDepartment);
}

void Session::cmd_department_2() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ChangeId);
    else
        sendToRooms(*this, replaceDepartment);
}

void Session::cmd_department_3() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ModifyFcos);
    else
        sendToRooms(*this, deleteDepartment);
}

void Session::cmd_loc() {
    sendToRooms(*this, addLocation);
}

void Session::cmd_location_2() {
    sendToRooms(*this, replaceLocation);
}

void Session::cmd_location_3() {
    sendToRooms(*this, deleteLocation);
}

} // namespace larkspur
