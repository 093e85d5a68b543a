#pragma once

#include <QString>

namespace larkspur {

// Which end of the link sent something: the hotel system (the console, or the PMS a tap watches)
// or the PBX.
enum class Side { Pms, Pbx };

inline Side otherSide(Side side) {
    return side == Side::Pms ? Side::Pbx : Side::Pms;
}

// "PMS", "PBX".
inline QString sideName(Side side) {
    return side == Side::Pms ? QStringLiteral("PMS") : QStringLiteral("PBX");
}

// The direction of what `from` sends: "PMS>PBX", "PBX>PMS".
inline QString directionName(Side from) {
    return sideName(from) + QLatin1Char('>') + sideName(otherSide(from));
}

} // namespace larkspur
