#include "core/clock_start.h"

namespace larkspur {

QDateTime clockStart() {
    const QDateTime given =
        QDateTime::fromString(qEnvironmentVariable("LARKSPUR_CLOCK_START"), Qt::ISODate);
    return given.isValid() ? given : QDateTime::currentDateTime();
}

} // namespace larkspur
