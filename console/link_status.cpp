#include "console/link_status.h"

#include "core/host_port.h"
#include "link/link.h"
#include "link/serial_line.h"

namespace larkspur {

QString linkStatusText(const LinkSettings& settings, LinkState state, const QString& reason) {
    const QString where =
        settings.useTcp
            ? QStringLiteral("TCP ") + formatHostPort(settings.ipAddress, settings.telnetPort)
            : QStringLiteral("serial %1").arg(serialDeviceName(settings.commPortNumber));
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
