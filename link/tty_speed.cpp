// Apart from the other tty settings: the kernel's termios2, which carries any speed, cannot be
// declared beside the C library's termios.
#include "link/tty_speed.h"

#include <asm/termbits.h>
#include <cerrno>
#include <cstdlib>
#include <sys/ioctl.h>

namespace larkspur {

namespace {
struct Named {
    int baud;
    speed_t code;
};
constexpr Named namedSpeeds[] = {
    {50, B50},       {75, B75},         {110, B110},       {134, B134},       {150, B150},
    {200, B200},     {300, B300},       {600, B600},       {1200, B1200},     {1800, B1800},
    {2400, B2400},   {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},
    {57600, B57600}, {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};
} // namespace

int setTtySpeed(int fd, int baud) {
    termios2 t{};
    if (::ioctl(fd, TCGETS2, &t) != 0)
        return errno;
    speed_t code = BOTHER;
    for (const Named& n : namedSpeeds)
        if (n.baud == baud)
            code = n.code;
    t.c_cflag &= ~(CBAUD | (CBAUD << IBSHIFT));
    t.c_cflag |= code | (code << IBSHIFT);
    t.c_ispeed = speed_t(baud);
    t.c_ospeed = speed_t(baud);
    if (::ioctl(fd, TCSETS2, &t) != 0)
        return errno;
    termios2 kept{};
    if (::ioctl(fd, TCGETS2, &kept) != 0)
        return errno;
    // A UART makes what its divisor allows; a couple of per cent off still talks.
    const auto near = [baud](speed_t made) { return std::abs(int(made) - baud) * 50 <= baud; };
    return near(kept.c_ospeed) && near(kept.c_ispeed) ? 0 : EINVAL;
}

} // namespace larkspur
