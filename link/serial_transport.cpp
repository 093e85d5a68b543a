#include "link/serial_transport.h"

#include "link/serial_line.h"

namespace larkspur {

namespace {
// QSerialPort has no event for a carrier change; a light poll stands in for it.
constexpr int carrierPollMs = 200;
} // namespace

SerialTransport::SerialTransport(QObject* parent) : Transport(parent) {
    connect(&m_port, &QSerialPort::readyRead, this, &Transport::dataReceived);
    connect(&m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) {
        // A vanished device keeps reporting ReadError at full speed while the port stays open.
        if (e == QSerialPort::ReadError || e == QSerialPort::ResourceError) {
            const QString reason = m_port.errorString();
            close();
            Q_EMIT linkLost(reason);
        }
    });
    m_carrierPoll.setInterval(carrierPollMs);
    connect(&m_carrierPoll, &QTimer::timeout, this, &SerialTransport::watchCarrier);
}

bool SerialTransport::isOpen() const {
    return m_port.isOpen();
}

void SerialTransport::write(const QByteArray& bytes) {
    m_port.write(bytes);
}

QByteArray SerialTransport::readAll() {
    QByteArray bytes = m_port.readAll();
    if (m_options.nullDiscard)
        bytes.replace('\0', QByteArray());
    return bytes;
}

void SerialTransport::close() {
    m_carrierPoll.stop();
    if (m_port.isOpen())
        m_port.close();
}

QString SerialTransport::applySerialOptions(const SerialOptions& options) {
    SerialLine line;
    QString error;
    if (!parseSerialLine(options.lineSettings, line, error))
        return error;
    m_options = options;
    m_port.setBaudRate(line.baudRate);
    m_port.setParity(line.parity);
    m_port.setDataBits(QSerialPort::DataBits(line.dataBits));
    m_port.setStopBits(line.stopBits);
    return m_port.isOpen() ? applyToOpenPort() : QString();
}

QString SerialTransport::openPort(const QString& portName) {
    m_port.setPortName(portName);
    if (!m_port.open(QIODevice::ReadWrite))
        return m_port.errorString();
    const QString error = applyToOpenPort();
    if (!error.isEmpty()) {
        m_port.close();
        return error;
    }
    m_carrier = m_port.pinoutSignals().testFlag(QSerialPort::DataCarrierDetectSignal);
    if (m_port.error() == QSerialPort::NoError)
        m_carrierPoll.start();
    m_port.clearError();
    return QString();
}

QString SerialTransport::applyToOpenPort() {
    // The device may refuse what the closed port accepted; the settings are set again so a
    // refusal shows here and names the setting.
    if (!m_port.setBaudRate(m_port.baudRate()))
        return QStringLiteral("speed %1 refused: %2")
            .arg(m_port.baudRate())
            .arg(m_port.errorString());
    if (!m_port.setParity(m_port.parity()))
        return QStringLiteral("parity refused: %1").arg(m_port.errorString());
    if (!m_port.setDataBits(m_port.dataBits()))
        return QStringLiteral("%1 data bits refused: %2")
            .arg(int(m_port.dataBits()))
            .arg(m_port.errorString());
    if (!m_port.setStopBits(m_port.stopBits()))
        return QStringLiteral("stop bits refused: %1").arg(m_port.errorString());
    m_port.setFlowControl(QSerialPort::NoFlowControl);

    // Lines a pty or a bare adapter cannot drive do not stop the link.
    QStringList undriven;
    if (!m_port.setDataTerminalReady(m_options.dtr) && m_options.dtr)
        undriven << QStringLiteral("DTR");
    if (!m_port.setRequestToSend(m_options.rts) && m_options.rts)
        undriven << QStringLiteral("RTS");
    m_port.clearError();
    if (!undriven.isEmpty())
        Q_EMIT warning(QStringLiteral("%1 cannot be set on %2")
                           .arg(undriven.join(QStringLiteral(" and ")), m_port.portName()));
    return QString();
}

void SerialTransport::watchCarrier() {
    const bool carrier = m_port.pinoutSignals().testFlag(QSerialPort::DataCarrierDetectSignal);
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

QString SerialTransport::describe() const {
    return QStringLiteral("serial %1").arg(m_port.portName());
}

} // namespace larkspur
