// Guest check-in and check-out: the PBX learns that a room is occupied or vacated. In voice-mail
// mode the same buttons check a mailbox in or out.
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

void Session::cmd_chk_in() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::CheckIn);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("CHK1")));
}

void Session::cmd_chk_out() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::CheckOut);
    else
        sendToRooms(*this, hotelTransaction(QStringLiteral("CHK0")));
}

} // namespace larkspur
