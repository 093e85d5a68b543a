#include "link/qt_tcp_transport.h"

namespace larkspur {

QtTcpTransport::QtTcpTransport(QObject* parent) : Transport(parent) {
    connect(&m_dialer.socket, &QTcpSocket::connected, this, &QtTcpTransport::onConnected);
    connect(&m_dialer.socket, &QTcpSocket::disconnected, this, &QtTcpTransport::onDisconnected);
    connect(&m_dialer.socket, &QTcpSocket::readyRead, this, &Transport::dataReceived);
}

bool QtTcpTransport::isOpen() const {
    return m_open;
}

void QtTcpTransport::onConnected() {
    // Every message is a handful of bytes that must leave at once.
    m_dialer.socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
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
    m_dialer.socket.write(bytes);
    m_dialer.socket.flush();
}

QByteArray QtTcpTransport::readAll() {
    return m_dialer.socket.readAll();
}

void QtTcpTransport::close() {
    m_open = false;
    m_dialer.socket.abort();
}

void QtTcpTransport::connectToHost(const QString& host, quint16 port) {
    m_dialer.dial(host, port, isOpen());
}

QString QtTcpTransport::describe() const {
    return m_dialer.describe();
}

} // namespace larkspur

// The meta-object is compiled here rather than with the library's others, so a program that
// reaches its PBX through the descriptor transports links none of this one.
#include "moc_qt_tcp_transport.cpp"
