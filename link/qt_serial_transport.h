#pragma once

#include "link/serial_line.h"
#include "link/transport.h"

#include <QSerialPort>
#include <QTimer>

namespace larkspur {

// The PBX on a serial port through Qt's own port class, for platforms without POSIX
// descriptors. Every write is flushed at once, so an answer written from the receiver leaves
// before the receiver returns.
class QtSerialTransport : public Transport {
    Q_OBJECT
public:
    explicit QtSerialTransport(QObject* parent = nullptr);

    QString describe() const override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;
    bool isOpen() const override { return m_port.isOpen(); }
    // A close asked for by the console is not a loss of the link.
    void close() override;
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;

private:
    QString applyToOpenPort();
    void onError(QSerialPort::SerialPortError error);
    void watchCarrier();

    QSerialPort m_port;
    SerialSettings m_serial;
    QString m_portName;
    QTimer m_carrierPoll;
    bool m_carrier = false;
    // Counts the opens, so a loss noticed on one port never closes the next.
    quint64 m_opened = 0;
    bool m_lossPending = false;
    bool m_flushing = false; // inside our own flush of a write
};

} // namespace larkspur
