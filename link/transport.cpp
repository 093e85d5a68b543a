#include "link/transport.h"

namespace larkspur {

void Transport::connectToHost(const QString&, quint16) {}

QString Transport::applySerialOptions(const SerialOptions&) {
    return QStringLiteral("not a serial port");
}

QString Transport::openPort(const QString&) {
    return QStringLiteral("not a serial port");
}

} // namespace larkspur
