#include "records/script_lines.h"

#include "protocol/expectation_items.h"
#include "protocol/frame.h"

namespace larkspur {

namespace {
QString recordedExpectation(const QString& item, const QString& room, bool withNotice) {
    const ExpectationItem* entry = findExpectationItem(item);
    if (!entry || !entry->hasRoom())
        return item;
    return (withNotice ? entry->recordedNotice : entry->recordedPlain) + room;
}
} // namespace

QString scriptHeader(PmsMode mode, Protocol protocol) {
    return mode == PmsMode::Hotel
               ? QString()
               : QStringLiteral("VMAIL") + protocolName(protocol) + carriage_return();
}

QString vmailScriptLine(const QString& frame) {
    return frame + QLatin1Char('~');
}

QString expectationScriptLine(bool withNotice, const QString& item, const QString& room,
                              const QString& digit) {
    return (withNotice ? QStringLiteral("NTFY ") : QStringLiteral("WAIT ")) +
           recordedExpectation(item, room, withNotice) + QLatin1Char(' ') + digit;
}

} // namespace larkspur
