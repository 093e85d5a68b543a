#include "link/tty_line.h"

#include "link/tty_speed.h"

#include <cerrno>
#include <cstring>
#include <sys/ioctl.h>
#include <termios.h>

namespace larkspur {

namespace {

QString errorText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

// Stores `wanted` and reads back what the device kept: 0 when the bits under `mask` are as
// asked, else the errno value or EINVAL.
int store(int fd, const termios& wanted, tcflag_t mask) {
    if (::tcsetattr(fd, TCSANOW, &wanted) != 0)
        return errno;
    termios kept{};
    if (::tcgetattr(fd, &kept) != 0)
        return errno;
    return (kept.c_cflag & mask) == (wanted.c_cflag & mask) ? 0 : EINVAL;
}

QString refusal(int error) {
    return error == EINVAL ? QStringLiteral("the device keeps its own") : errorText(error);
}

tcflag_t parityBits(QSerialPort::Parity parity) {
    switch (parity) {
    case QSerialPort::EvenParity:
        return PARENB;
    case QSerialPort::OddParity:
        return PARENB | PARODD;
    case QSerialPort::MarkParity:
        return PARENB | CMSPAR | PARODD;
    case QSerialPort::SpaceParity:
        return PARENB | CMSPAR;
    default:
        return 0;
    }
}

} // namespace

QString applyTtyLine(int fd, const SerialLine& line) {
    termios t{};
    if (::tcgetattr(fd, &t) != 0)
        return QStringLiteral("not a serial port: ") + errorText(errno);
    ::cfmakeraw(&t);
    t.c_cflag |= CLOCAL | CREAD;
    t.c_cflag &= ~CRTSCTS;
    t.c_iflag &= ~(IXON | IXOFF | IXANY);
    t.c_cc[VMIN] = 1;
    t.c_cc[VTIME] = 0;
    if (::tcsetattr(fd, TCSANOW, &t) != 0)
        return QStringLiteral("raw mode refused: ") + errorText(errno);

    if (const int error = setTtySpeed(fd, line.baudRate))
        return QStringLiteral("speed %1 refused: %2").arg(line.baudRate).arg(refusal(error));
    ::tcgetattr(fd, &t);

    t.c_cflag = (t.c_cflag & ~(PARENB | PARODD | CMSPAR)) | parityBits(line.parity);
    if (const int error = store(fd, t, PARENB | PARODD | CMSPAR))
        return QStringLiteral("parity refused: %1").arg(refusal(error));

    const tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    if (line.dataBits < 5 || line.dataBits > 8)
        return QStringLiteral("%1 data bits refused: a tty takes 5 to 8").arg(line.dataBits);
    t.c_cflag = (t.c_cflag & ~CSIZE) | sizes[line.dataBits - 5];
    if (const int error = store(fd, t, CSIZE))
        return QStringLiteral("%1 data bits refused: %2").arg(line.dataBits).arg(refusal(error));

    if (line.stopBits == QSerialPort::OneAndHalfStop)
        return QStringLiteral("stop bits refused: a tty takes 1 or 2");
    t.c_cflag = line.stopBits == QSerialPort::TwoStop ? t.c_cflag | CSTOPB : t.c_cflag & ~CSTOPB;
    if (const int error = store(fd, t, CSTOPB))
        return QStringLiteral("stop bits refused: %1").arg(refusal(error));
    return QString();
}

bool setModemLine(int fd, int line, bool raised) {
    return ::ioctl(fd, raised ? TIOCMBIS : TIOCMBIC, &line) == 0;
}

std::optional<bool> carrierDetect(int fd) {
    int lines = 0;
    if (::ioctl(fd, TIOCMGET, &lines) != 0)
        return std::nullopt;
    return (lines & TIOCM_CAR) != 0;
}

} // namespace larkspur
