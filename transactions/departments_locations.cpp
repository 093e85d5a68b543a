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

HotelTransaction textTransaction(const ExtraField& text, const QString& code) {
    return {.rule = sendRule(code), .body = codeTextAndRoom(code), .extras = {text}};
}

const HotelTransaction addDepartment = textTransaction(department, QStringLiteral("DPT1"));
const HotelTransaction replaceDepartment = textTransaction(department, QStringLiteral("DPT2"));
const HotelTransaction deleteDepartment = textTransaction(department, QStringLiteral("DPT3"));
const HotelTransaction addLocation = textTransaction(location, QStringLiteral("LOC1"));
const HotelTransaction replaceLocation = textTransaction(location, QStringLiteral("LOC2"));
const HotelTransaction deleteLocation = textTransaction(location, QStringLiteral("LOC3"));

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
