#pragma once

namespace larkspur {

// Sets the tty `fd` to `baud` bits per second both ways, a speed the system names or any other
// the device can make, and reads it back. Returns 0, or the errno value of the refusal (EINVAL
// when the device kept another speed).
int setTtySpeed(int fd, int baud);

} // namespace larkspur
