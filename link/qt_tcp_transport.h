#pragma once

#include "link/transport.h"

#include "link/tcp_dialer.h"

#include <QTcpSocket>

namespace larkspur {

// The PBX over TCP on Qt's own socket, for platforms without POSIX descriptors. Every write is
// flushed at once: an answer written from the receiver leaves before the receiver returns,
// not on the next pass of the event loop.
class QtTcpTransport : public Transport {
    Q_OBJECT
public:
    explicit QtTcpTransport(QObject* parent = nullptr);

    void connectToHost(const QString& host, quint16 port) override;
    bool isOpen() const override;
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    // A close asked for by the console is not a loss of the link.
    void close() override;
    QString describe() const override;

private:
    void onConnected();
    void onDisconnected();

    TcpDialer m_dialer;
    // Connected and not closed by the console: a disconnection now is the PBX's doing.
    bool m_open = false;
};

} // namespace larkspur
