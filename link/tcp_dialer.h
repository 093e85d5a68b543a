#pragma once

#include <QTcpSocket>

namespace larkspur {

// The socket a TCP transport reaches the PBX with, and where it was sent.
class TcpDialer {
public:
    QTcpSocket socket;

    // Asked again each second by the connect loop: only a refused attempt is repeated, never one
    // under way, nor a link that is up.
    void dial(const QString& host, quint16 port, bool linkUp) {
        if (linkUp || socket.state() != QAbstractSocket::UnconnectedState)
            return;
        m_host = host;
        m_port = port;
        socket.connectToHost(host, port);
    }
    // "TCP 127.0.0.1:15374"
    QString describe() const { return QStringLiteral("TCP %1:%2").arg(m_host).arg(m_port); }

private:
    QString m_host;
    quint16 m_port = 0;
};

} // namespace larkspur
