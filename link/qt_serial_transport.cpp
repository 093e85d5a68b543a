#include "link/qt_serial_transport.h"

namespace larkspur {

QtSerialTransport::QtSerialTransport(QObject* parent) : Transport(parent) {
    m_carrierPoll.setInterval(carrierPollMs);
    connect(&m_carrierPoll, &QTimer::timeout, this, &QtSerialTransport::watchCarrier);
    connect(&m_port, &QSerialPort::readyRead, this, &Transport::dataReceived);
    connect(&m_port, &QSerialPort::errorOccurred, this, &QtSerialTransport::onError);
}

void QtSerialTransport::write(const QByteArray& bytes) {
    if (!m_port.isOpen() || bytes.isEmpty())
        return;
    m_port.write(bytes);
    m_flushing = true;
    m_port.flush();
    m_flushing = false;
}

QByteArray QtSerialTransport::readAll() {
    QByteArray bytes = m_port.readAll();
    if (m_serial.options.nullDiscard)
        bytes.replace('\0', QByteArray());
    return bytes;
}

void QtSerialTransport::close() {
    m_carrierPoll.stop();
    m_lossPending = false;
    m_port.close();
}

QString QtSerialTransport::applySerialOptions(const SerialOptions& options) {
    if (const QString error = m_serial.take(options); !error.isEmpty())
        return error;
    return m_port.isOpen() ? applyToOpenPort() : QString();
}

QString QtSerialTransport::openPort(const QString& portName) {
    close();
    m_portName = portName;
    // The port opens with what it holds; settings an earlier port refused must not stop it
    // from opening, so it opens plain and takes the line one setting at a time after.
    m_port.setBaudRate(QSerialPort::Baud9600);
    m_port.setParity(QSerialPort::NoParity);
    m_port.setDataBits(QSerialPort::Data8);
    m_port.setStopBits(QSerialPort::OneStop);
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    m_port.setPortName(portName);
    if (!m_port.open(QIODevice::ReadWrite))
        return m_port.errorString();
    ++m_opened;
    const QString error = applyToOpenPort();
    if (!error.isEmpty()) {
        close();
        return error;
    }
    m_port.clearError();
    m_carrier = (m_port.pinoutSignals() & QSerialPort::DataCarrierDetectSignal) != 0;
    // A port that cannot tell (a pty) is not asked again.
    if (m_port.error() == QSerialPort::NoError)
        m_carrierPoll.start();
    return QString();
}

QString QtSerialTransport::applyToOpenPort() {
    if (!m_port.setBaudRate(m_serial.line.baudRate))
        return QStringLiteral("speed %1 refused: %2")
            .arg(m_serial.line.baudRate)
            .arg(m_port.errorString());
    if (!m_port.setParity(m_serial.line.parity))
        return QStringLiteral("parity refused: %1").arg(m_port.errorString());
    if (m_serial.line.dataBits < QSerialPort::Data5 || m_serial.line.dataBits > QSerialPort::Data8)
        return QStringLiteral("%1 data bits refused: a serial port takes 5 to 8")
            .arg(m_serial.line.dataBits);
    if (!m_port.setDataBits(QSerialPort::DataBits(m_serial.line.dataBits)))
        return QStringLiteral("%1 data bits refused: %2")
            .arg(m_serial.line.dataBits)
            .arg(m_port.errorString());
#ifndef Q_OS_WIN
    // Qt sends 1.5 stop bits as 1 outside Windows rather than refusing them.
    if (m_serial.line.stopBits == QSerialPort::OneAndHalfStop)
        return QStringLiteral("stop bits refused: only a Windows port takes 1.5");
#endif
    if (!m_port.setStopBits(m_serial.line.stopBits))
        return QStringLiteral("stop bits refused: %1").arg(m_port.errorString());
    // Lines a pty or a bare adapter cannot drive do not stop the link.
    QStringList undriven;
    if (!m_port.setDataTerminalReady(m_serial.options.dtr) && m_serial.options.dtr)
        undriven << QStringLiteral("DTR");
    if (!m_port.setRequestToSend(m_serial.options.rts) && m_serial.options.rts)
        undriven << QStringLiteral("RTS");
    m_port.clearError();
    if (!undriven.isEmpty())
        Q_EMIT warning(QStringLiteral("%1 cannot be set on %2")
                           .arg(undriven.join(QStringLiteral(" and ")), m_portName));
    return QString();
}

void QtSerialTransport::onError(QSerialPort::SerialPortError error) {
    // A flush that finds the device's buffer full is reported as a resource error, yet the rest
    // only waits for the port to become writable; a device that is really gone is seen on the
    // read side too.
    if (m_flushing)
        return;
    // A device that went away reports a read error on every pass of the event loop while the
    // port stays open; only closing it ends that. The port is closed once the signal has
    // returned, not inside it.
    if ((error != QSerialPort::ReadError && error != QSerialPort::ResourceError) ||
        !m_port.isOpen() || m_lossPending)
        return;
    m_lossPending = true;
    const QString reason = error == QSerialPort::ReadError ? QStringLiteral("the device hung up")
                                                           : m_port.errorString();
    QMetaObject::invokeMethod(
        this,
        [this, reason, opened = m_opened] {
            if (opened != m_opened || !m_lossPending)
                return;
            close();
            Q_EMIT linkLost(reason);
        },
        Qt::QueuedConnection);
}

void QtSerialTransport::watchCarrier() {
    m_port.clearError();
    const bool carrier = (m_port.pinoutSignals() & QSerialPort::DataCarrierDetectSignal) != 0;
    if (m_port.error() != QSerialPort::NoError) {
        m_port.clearError();
        m_carrierPoll.stop();
        return;
    }
    if (carrier != m_carrier) {
        m_carrier = carrier;
        Q_EMIT carrierDetectChanged();
    }
}

QString QtSerialTransport::describe() const {
    return QStringLiteral("serial %1").arg(m_portName);
}

} // namespace larkspur

// The meta-object is compiled here rather than with the library's others, so a program that
// reaches its PBX through the descriptor transports links none of this one.
#include "moc_qt_serial_transport.cpp"
