#pragma once

#include <QString>

#include <optional>

namespace larkspur {

// What the console plays: hotel transactions, or mailbox operations towards voice mail.
enum class PmsMode { Hotel, Vmail };
// How voice-mail frames are padded: HYATT pads the body to 13, HIS does not.
enum class Protocol { Hyatt, His };

// The names the settings, the scripts, the options and the status bar use: "HOTEL", "VMAIL";
// "HYATT", "HIS".
QString pmsModeName(PmsMode mode);
QString protocolName(Protocol protocol);
std::optional<PmsMode> pmsModeNamed(const QString& name);
std::optional<Protocol> protocolNamed(const QString& name);

} // namespace larkspur
