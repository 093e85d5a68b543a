// Guest names: add, replace, delete and transfer the name the PBX shows for a room. In
// voice-mail mode the same buttons carry mailbox operations.
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"
#include "transactions/voice_mail.h"

namespace larkspur {

namespace {

QString nameForm(const QString& trimmed) {
    return verify_string(trimmed, 21, QStringLiteral("L"));
}

const ExtraField guestName{Field::Text1, nameForm, QStringLiteral("Invalid Name!")};
const ExtraField transferRoom{Field::txt_suite_2, roomForm,
                              QStringLiteral("Invalid Transfer Room Number!")};

HotelTransaction nameTransaction(const QString& code) {
    return {.rule = sendRule(code), .body = codeTextAndRoom(code), .extras = {guestName}};
}

const HotelTransaction addName = nameTransaction(QStringLiteral("NAM1"));
const HotelTransaction replaceName = nameTransaction(QStringLiteral("NAM2"));
const HotelTransaction deleteName = nameTransaction(QStringLiteral("NAM3"));

// The transfer room is checked before the name, but sent after the room.
const HotelTransaction transferName{
    .rule = sendRule(QStringLiteral("NAM4")),
    .body =
        [](const RoomMessage& m) {
            return QStringLiteral("NAM4 ") + m.extras.at(1) + m.room + m.extras.at(0);
        },
    .extras = {transferRoom, guestName},
};

} // namespace

void Session::cmd_name_1() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::QueryMessageWaiting);
    else
        sendToRooms(*this, addName);
}

void Session::cmd_replace_name() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::TextMessageWaiting);
    else
        sendToRooms(*this, replaceName);
}

void Session::Command6() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::MoveMailbox);
    else
        sendToRooms(*this, deleteName);
}

void Session::cmd_xfer_name() {
    if (inVmailMode(*this))
        send_vmail_operation(*this, VmailOperation::CheckInWithPasscode);
    else
        sendToRooms(*this, transferName);
}

} // namespace larkspur
