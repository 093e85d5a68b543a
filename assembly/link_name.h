#pragma once

#include <QString>

namespace larkspur {

struct LinkSettings;

// The link `settings` choose, as the operator knows it: "TCP 127.0.0.1:15374",
// "serial /dev/ttyS0".
QString linkName(const LinkSettings& settings);

} // namespace larkspur
