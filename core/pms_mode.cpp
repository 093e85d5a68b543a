#include "core/pms_mode.h"

namespace larkspur {

namespace {
const char* const modeNames[] = {"HOTEL", "VMAIL"};
const char* const protocolNames[] = {"HYATT", "HIS"};

template <typename Enum, size_t N>
std::optional<Enum> named(const char* const (&names)[N], const QString& name) {
    for (size_t i = 0; i < N; ++i)
        if (name == QLatin1String(names[i]))
            return Enum(i);
    return std::nullopt;
}
} // namespace

QString pmsModeName(PmsMode mode) {
    return QString::fromLatin1(modeNames[size_t(mode)]);
}

QString protocolName(Protocol protocol) {
    return QString::fromLatin1(protocolNames[size_t(protocol)]);
}

std::optional<PmsMode> pmsModeNamed(const QString& name) {
    return named<PmsMode>(modeNames, name);
}

std::optional<Protocol> protocolNamed(const QString& name) {
    return named<Protocol>(protocolNames, name);
}

} // namespace larkspur
