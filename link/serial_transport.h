#pragma once

#include "link/transport.h"

#include <QSerialPort>
#include <QTimer>

namespace larkspur {

class SerialTransport : public Transport {
    Q_OBJECT
public:
    explicit SerialTransport(QObject* parent = nullptr);

    bool isOpen() const override;
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    void close() override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;
    QString describe() const override;

private:
    QString applyToOpenPort();
    void watchCarrier();

    QSerialPort m_port;
    SerialOptions m_options;
    QTimer m_carrierPoll;
    bool m_carrier = false;
};

} // namespace larkspur
