// Room features: the message-waiting lamp, the credit limit, the wake-up call and the station
// restriction level. They never look at the mode; their controls are hidden in voice-mail mode.
#include "core/operator_interface.h"
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"

namespace larkspur {

namespace {

QString wakeupForm(const QString& trimmed) {
    QString time = trimmed;
    return get_wakeup_time(time);
}

const HotelTransaction messageWaitingOn = roomTransaction(QStringLiteral("MW 1"));
const HotelTransaction messageWaitingOff = roomTransaction(QStringLiteral("MW 0"));

// A bad amount deliberately reuses the name transaction's sentence.
const HotelTransaction setCredit{
    .rule = sendRule(QStringLiteral("LMT1")),
    .body =
        [](const RoomMessage& m) {
            return QStringLiteral("LMT1 ") + m.room + u' ' + m.extras.at(0);
        },
    .extras = {{Field::txt_credit, roomForm, QStringLiteral("Invalid Name!")}},
};

// The frame carries no blank after "WKP"; the failure lines do.
const HotelTransaction wakeUp{
    .rule = sendRule(QStringLiteral("WKP")),
    .body = [](const RoomMessage& m) { return QStringLiteral("WKP") + m.extras.at(0) + m.room; },
    .extras = {{Field::txt_time, wakeupForm, QStringLiteral("Invalid Time!")}},
    .reported =
        [](const RoomMessage& m) { return QStringLiteral("WKP ") + m.extras.at(0) + m.room; },
};

// The texts of the restriction list and the level each one sends.
struct RestrictionLevel {
    QString selection;
    QString level;
};
const RestrictionLevel restrictionLevels[] = {
    {QStringLiteral("internal call"), QStringLiteral("0")},
    {QStringLiteral("local call"), QStringLiteral("1")},
    {QStringLiteral("long distant call"), QStringLiteral("2")},
    {QStringLiteral("option 1"), QStringLiteral("3")},
    {QStringLiteral("option 2"), QStringLiteral("4")},
    {QStringLiteral("option 3"), QStringLiteral("5")},
};

} // namespace

void Session::cmd_msg_wait() {
    sendToRooms(*this, messageWaitingOn);
}

void Session::cmd_message_waiting_0() {
    sendToRooms(*this, messageWaitingOff);
}

void Session::cmd_set_credit() {
    sendToRooms(*this, setCredit);
}

void Session::cmd_wakeup() {
    sendToRooms(*this, wakeUp);
}

void Session::cmb_restrict_Click() {
    if (m_cmb_restrict.isEmpty())
        return;
    for (const RestrictionLevel& entry : restrictionLevels) {
        if (entry.selection == m_cmb_restrict) {
            send_station_restriction(entry.level);
            return;
        }
    }
    operatorInterface.notify(QStringLiteral("message not recgonized"));
}

void Session::send_station_restriction(const QString& level) {
    sendToRooms(*this, {.rule = sendRule(QStringLiteral("RST")),
                        .body = codeAndRoom(QStringLiteral("RST") + level),
                        .noRoomLine = QStringLiteral("No valid room number")});
}

} // namespace larkspur
