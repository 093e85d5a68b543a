#pragma once

#include "link/transport.h"

#include <QTcpSocket>

namespace larkspur {

class TcpTransport : public Transport {
    Q_OBJECT
public:
    explicit TcpTransport(QObject* parent = nullptr);

    bool isOpen() const override;
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    void close() override;
    void connectToHost(const QString& host, quint16 port) override;
    QString describe() const override;

private:
    QTcpSocket m_socket;
    QString m_host;
    quint16 m_port = 0;
};

} // namespace larkspur
