#include "sim/tcp_peer.h"

#include <QTcpSocket>

namespace larkspur::sim {

TcpPeer::TcpPeer(QTcpSocket* socket, QObject* parent) : Peer(parent), m_socket(socket) {
    m_socket->setParent(this);
    // Answers are single bytes; Nagle would hold them back behind the previous one.
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // Answers are short, so a small kernel buffer costs nothing; it lets a console that stops
    // reading be noticed after a few hundred answers rather than after megabytes of them.
    m_socket->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, 32 * 1024);
    connect(m_socket, &QTcpSocket::readyRead, this,
            [this] { Q_EMIT received(m_socket->readAll()); });
    connect(m_socket, &QTcpSocket::disconnected, this, &TcpPeer::leave);
    // The server may have taken the connection in a batch while another console was served: what
    // it sent, or its hanging up, may have come before anyone listened.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_socket->bytesAvailable() > 0)
                Q_EMIT received(m_socket->readAll());
            if (m_socket->state() != QAbstractSocket::ConnectedState)
                leave();
        },
        Qt::QueuedConnection);
}

bool TcpPeer::write(const QByteArray& bytes) {
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        return false;
    const qsizetype unsent = m_socket->bytesToWrite() + bytes.size();
    if (unsent > maxUnsentBytes) {
        Q_EMIT stalled(unsent);
        m_socket->abort();
        return false;
    }
    if (m_socket->write(bytes) != bytes.size())
        return false;
    // Otherwise the bytes would leave on the next pass of the event loop.
    m_socket->flush();
    return true;
}

void TcpPeer::leave() {
    if (std::exchange(m_left, true))
        return;
    Q_EMIT disconnected();
}

QString TcpPeer::description() const {
    return m_socket->peerAddress().toString() + u':' + QString::number(m_socket->peerPort());
}

} // namespace larkspur::sim
