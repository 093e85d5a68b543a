#pragma once

#include "link/fd_transport.h"
#include "link/serial_line.h"

#include <QTimer>

namespace larkspur {

// The PBX on a serial port (or a pty standing in for one), its line set through termios.
class SerialTransport : public FdTransport {
    Q_OBJECT
public:
    explicit SerialTransport(QObject* parent = nullptr);

    QByteArray readAll() override;
    void close() override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;
    QString describe() const override;

protected:
    QString lossReason(int error) const override;

private:
    QString applyToOpenPort();
    void watchCarrier();

    SerialSettings m_serial;
    QString m_portName;
    QTimer m_carrierPoll;
    bool m_carrier = false;
};

} // namespace larkspur
