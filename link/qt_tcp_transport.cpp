#include "link/qt_tcp_transport.h"

namespace larkspur {

QtTcpTransport::QtTcpTransport(QObject* parent) : Transport(parent) {
    connect(&m_socket, &QTcpSocket::connected, this, &QtTcpTransport::onConnected);
    connect(&m_socket, &QTcpSocket::disconnected, this, &QtTcpTransport::onDisconnected);
    connect(&m_socket, &QTcpSocket::readyRead, this, &Transport::dataReceived);
}

bool QtTcpTransport::isOpen() const {
    return m_open;
}

void QtTcpTransport::onConnected() {
    // Every message is a handful of bytes that must leave at once.
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_open = true;
}

void QtTcpTransport::onDisconnected() {
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT linkLost(QStringLiteral("closed by the PBX"));
}

void QtTcpTransport::write(const QByteArray& bytes) {
    if (!m_open || bytes.isEmpty())
        return;
    m_socket.write(bytes);
    m_socket.flush();
}

QByteArray QtTcpTransport::readAll() {
    return m_socket.readAll();
}

void QtTcpTransport::close() {
    m_open = false;
    m_socket.abort();
}

void QtTcpTransport::connectToHost(const QString& host, quint16 port) {
    // Asked again each second by the connect loop: only a refused attempt is repeated.
    if (m_open || m_socket.state() != QAbstractSocket::UnconnectedState)
        return;
    m_host = host;
    m_port = port;
    m_socket.connectToHost(host, port);
}

QString QtTcpTransport::describe() const {
    return QStringLiteral("TCP %1:%2").arg(m_host).arg(m_port);
}

} // namespace larkspur

// The meta-object is compiled here rather than with the library's others, so a program that
// reaches its PBX through the descriptor transports links none of this one.
#include "moc_qt_tcp_transport.cpp"
