#include "console/link_status.h"

#include "assembly/link_name.h"
#include "link/link.h"

namespace larkspur {

QString linkStatusText(const LinkSettings& settings, LinkState state, const QString& reason) {
    const QString where = linkName(settings);
    switch (state) {
    case LinkState::Closed:
        return where + QStringLiteral(" closed");
    case LinkState::Connecting:
        return where + QStringLiteral(" connecting...");
    case LinkState::NoResponse:
        return where + QStringLiteral(" open, no response from PBX");
    case LinkState::Connected:
        return where + QStringLiteral(" connected");
    case LinkState::Lost:
        return where + QStringLiteral(" lost: ") + reason;
    }
    return where;
}

QString modeStatusText(PmsMode pmsMode, Protocol protocolType) {
    return QStringLiteral("%1 mode, %2 protocol")
        .arg(pmsModeName(pmsMode), protocolName(protocolType));
}

} // namespace larkspur
