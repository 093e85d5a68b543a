// Guest names: add, replace, delete and transfer the name the PBX shows for a room. In
// voice-mail mode the same buttons carry mailbox operations.
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

void Session::cmd_name_1() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::QueryMessageWaiting);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("NAM1")));
}

void Session::cmd_replace_name() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::TextMessageWaiting);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("NAM2")));
}

void Session::Command6() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::MoveMailbox);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("NAM3")));
}

void Session::cmd_xfer_name() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::CheckInWithPasscode);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("NAM4")));
}

} // namespace larkspur
