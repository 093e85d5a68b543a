#include "link/serial_transport.h"

#include "link/tty_line.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>

namespace larkspur {

namespace {
QString errorText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}
} // namespace

SerialTransport::SerialTransport(QObject* parent) : FdTransport(parent) {
    m_carrierPoll.setInterval(carrierPollMs);
    connect(&m_carrierPoll, &QTimer::timeout, this, &SerialTransport::watchCarrier);
}

QByteArray SerialTransport::readAll() {
    QByteArray bytes = FdTransport::readAll();
    if (m_serial.options.nullDiscard)
        bytes.replace('\0', QByteArray());
    return bytes;
}

void SerialTransport::close() {
    m_carrierPoll.stop();
    FdTransport::close();
}

QString SerialTransport::applySerialOptions(const SerialOptions& options) {
    if (const QString error = m_serial.take(options); !error.isEmpty())
        return error;
    return isOpen() ? applyToOpenPort() : QString();
}

QString SerialTransport::openPort(const QString& portName) {
    close();
    m_portName = portName;
    const int fd =
        ::open(QFile::encodeName(portName).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return errorText(errno);
    // Nobody else opens the port while the console holds it.
    ::ioctl(fd, TIOCEXCL);
    attach(fd, Kind::Tty);
    const QString error = applyToOpenPort();
    if (!error.isEmpty()) {
        close();
        return error;
    }
    const std::optional<bool> carrier = carrierDetect(fd);
    m_carrier = carrier.value_or(false);
    if (carrier)
        m_carrierPoll.start();
    return QString();
}

QString SerialTransport::applyToOpenPort() {
    const QString refused = applyTtyLine(descriptor(), m_serial.line);
    if (!refused.isEmpty())
        return refused;
    // Lines a pty or a bare adapter cannot drive do not stop the link.
    QStringList undriven;
    if (!setModemLine(descriptor(), TIOCM_DTR, m_serial.options.dtr) && m_serial.options.dtr)
        undriven << QStringLiteral("DTR");
    if (!setModemLine(descriptor(), TIOCM_RTS, m_serial.options.rts) && m_serial.options.rts)
        undriven << QStringLiteral("RTS");
    if (!undriven.isEmpty())
        Q_EMIT warning(QStringLiteral("%1 cannot be set on %2")
                           .arg(undriven.join(QStringLiteral(" and ")), m_portName));
    return QString();
}

void SerialTransport::watchCarrier() {
    const std::optional<bool> carrier = carrierDetect(descriptor());
    if (!carrier) {
        m_carrierPoll.stop();
        return;
    }
    if (*carrier != m_carrier) {
        m_carrier = *carrier;
        Q_EMIT carrierDetectChanged();
    }
}

QString SerialTransport::describe() const {
    return QStringLiteral("serial %1").arg(m_portName);
}

QString SerialTransport::lossReason(int error) const {
    return error == 0 ? QStringLiteral("the device hung up") : errorText(error);
}

} // namespace larkspur
