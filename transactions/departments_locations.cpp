// Departments and locations: a ten-character text attached to a room. The department buttons
// carry mailbox operations in voice-mail mode; the location buttons are hidden there.
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

void Session::cmd_dept() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ChangePasscode);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("DPT1")));
}

void Session::cmd_department_2() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ChangeId);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("DPT2")));
}

void Session::cmd_department_3() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::ModifyFcos);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("DPT3")));
}

void Session::cmd_loc() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("LOC1")));
}

void Session::cmd_location_2() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("LOC2")));
}

void Session::cmd_location_3() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("LOC3")));
}

} // namespace larkspur
