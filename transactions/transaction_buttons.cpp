// Every transaction button, pressed by the operator or by the script runner: the message
// catalogue says what each sends. In any mode but HOTEL the buttons that carry a mailbox
// operation send it; the others always send their hotel message.
#include "protocol/message_catalogue.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

namespace {
const VmailMessage* vmailMessageOf(Control button) {
    for (const VmailMessage& message : vmailMessages())
        if (message.button == button)
            return &message;
    return nullptr;
}

const HotelMessage* hotelMessageOf(Control button) {
    for (const HotelMessage& message : hotelMessages())
        if (message.button == button && message.recorded)
            return &message;
    return nullptr;
}
} // namespace

void Session::press(Control button) {
    if (linkedSuiteButtons().contains(button)) {
        // cmd_ste0 .. cmd_steB send STE0 .. STEB.
        send_linked_suite(QStringLiteral("STE") + controlName(button).right(1).toUpper());
        return;
    }
    if (!transactionButtons().contains(button))
        return;
    const VmailMessage* vmail = vmailMessageOf(button);
    if (vmail && m_link.pmsMode() != PmsMode::Hotel) {
        send_vmail_operation(*this, vmail->code);
        return;
    }
    if (const HotelMessage* hotel = hotelMessageOf(button))
        sendToRooms(*this, hotelTransaction(hotel->code));
}

} // namespace larkspur
