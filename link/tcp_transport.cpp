#include "link/tcp_transport.h"

namespace larkspur {

TcpTransport::TcpTransport(QObject* parent) : Transport(parent) {
    connect(&m_socket, &QTcpSocket::readyRead, this, &Transport::dataReceived);
    connect(&m_socket, &QTcpSocket::connected, this, [this] {
        // Every message is a handful of bytes that must leave at once.
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    });
    connect(&m_socket, &QTcpSocket::disconnected, this,
            [this] { Q_EMIT linkLost(QStringLiteral("closed by the PBX")); });
}

bool TcpTransport::isOpen() const {
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

void TcpTransport::write(const QByteArray& bytes) {
    m_socket.write(bytes);
    // Leave now rather than on the next pass of the event loop.
    m_socket.flush();
}

QByteArray TcpTransport::readAll() {
    return m_socket.readAll();
}

void TcpTransport::close() {
    // A close asked for by the console is not a loss of the link.
    const QSignalBlocker blocker(this);
    m_socket.abort();
}

void TcpTransport::connectToHost(const QString& host, quint16 port) {
    // Asked again each second by the connect loop: only a refused attempt is repeated.
    if (m_socket.state() != QAbstractSocket::UnconnectedState)
        return;
    m_host = host;
    m_port = port;
    m_socket.connectToHost(host, port);
}

QString TcpTransport::describe() const {
    return QStringLiteral("TCP %1:%2").arg(m_host).arg(m_port);
}

} // namespace larkspur
