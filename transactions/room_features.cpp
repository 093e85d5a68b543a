// Room features: the message-waiting lamp, the credit limit, the wake-up call and the station
// restriction level. They never look at the mode; their controls are hidden in voice-mail mode.
#include "core/operator_interface.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"

namespace larkspur {

namespace {

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
    sendToRooms(*this, hotelTransaction(QStringLiteral("MW 1")));
}

void Session::cmd_message_waiting_0() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("MW 0")));
}

void Session::cmd_set_credit() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("LMT1")));
}

void Session::cmd_wakeup() {
    sendToRooms(*this, hotelTransaction(QStringLiteral("WKP")));
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
    sendToRooms(*this, hotelTransaction(QStringLiteral("RST") + level));
}

} // namespace larkspur
