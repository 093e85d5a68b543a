#include "sim/tcp_peer.h"

#include <QTcpSocket>

namespace larkspur::sim {

TcpPeer::TcpPeer(QTcpSocket* socket, QObject* parent) : Peer(parent), m_socket(socket) {
    m_socket->setParent(this);
    // Answers are single bytes; Nagle would hold them back behind the previous one.
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this,
            [this] { Q_EMIT received(m_socket->readAll()); });
    connect(m_socket, &QTcpSocket::disconnected, this, &TcpPeer::disconnected);
}

bool TcpPeer::write(const QByteArray& bytes) {
    if (m_socket->state() != QAbstractSocket::ConnectedState ||
        m_socket->write(bytes) != bytes.size())
        return false;
    // Otherwise the bytes would leave on the next pass of the event loop.
    m_socket->flush();
    return true;
}

QString TcpPeer::description() const {
    return m_socket->peerAddress().toString() + u':' + QString::number(m_socket->peerPort());
}

} // namespace larkspur::sim
