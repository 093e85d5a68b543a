#pragma once

#include "core/pms_mode.h"

#include <QString>

namespace larkspur {

struct LinkSettings;

// Where the link stands, as the status bar shows it.
enum class LinkState { Closed, Connecting, NoResponse, Connected, Lost };

// "TCP 127.0.0.1:15374 connected", "serial /dev/ttyUSB0 closed",
// "TCP 10.0.0.9:15374 lost: closed by the PBX".
QString linkStatusText(const LinkSettings& settings, LinkState state, const QString& reason);

// "HOTEL mode, HYATT protocol".
QString modeStatusText(PmsMode pmsMode, Protocol protocolType);

} // namespace larkspur
