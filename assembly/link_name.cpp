#include "assembly/link_name.h"

#include "core/host_port.h"
#include "link/link.h"
#include "link/serial_line.h"

namespace larkspur {

QString linkName(const LinkSettings& settings) {
    return settings.useTcp
               ? QStringLiteral("TCP ") + formatHostPort(settings.ipAddress, settings.telnetPort)
               : QStringLiteral("serial ") + serialDeviceName(settings.commPortNumber);
}

} // namespace larkspur
