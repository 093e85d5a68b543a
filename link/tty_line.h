#pragma once

#include "link/serial_line.h"

#include <optional>

namespace larkspur {

// Puts the open tty `fd` in raw mode (every byte passes untouched, no flow control, the
// receiver on), then sets speed, parity, data bits and stop bits one at a time, reading each
// back: a device may take a setting without an error and keep its own. Returns why a setting
// was refused, naming it, or an empty text.
QString applyTtyLine(int fd, const SerialLine& line);

// Raises or drops a modem line (TIOCM_DTR, TIOCM_RTS); false where the device has none.
bool setModemLine(int fd, int line, bool raised);

// Whether the device sees a carrier; nothing where it cannot tell (a pty).
std::optional<bool> carrierDetect(int fd);

} // namespace larkspur
