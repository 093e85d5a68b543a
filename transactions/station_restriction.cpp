// The station restriction list: each level it offers, and the message that level sends. It never
// looks at the mode; the list is hidden in voice-mail mode.
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

void Session::cmb_restrict_Click(const QString& item) {
    if (item.isEmpty())
        return;
    for (const RestrictionLevel& entry : restrictionLevels) {
        if (entry.selection == item) {
            send_station_restriction(entry.level);
            return;
        }
    }
    m_operator.notify(QStringLiteral("message not recgonized"));
}

void Session::send_station_restriction(const QString& level) {
    sendToRooms(*this, hotelTransaction(QStringLiteral("RST") + level));
}

} // namespace larkspur
