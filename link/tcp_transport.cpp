#include "link/tcp_transport.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace larkspur {

void readyForMessages(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

int takeDescriptor(QTcpSocket& socket) {
    const int fd = ::fcntl(int(socket.socketDescriptor()), F_DUPFD_CLOEXEC, 0);
    // Closing the socket's own descriptor leaves the connection open on the duplicate.
    socket.abort();
    if (fd >= 0)
        readyForMessages(fd);
    return fd;
}

TcpTransport::TcpTransport(QObject* parent) : FdTransport(parent) {
    // Direct, so the descriptor changes hands before the socket has read a byte from it.
    connect(&m_dialer.socket, &QTcpSocket::connected, this, &TcpTransport::takeOver);
}

void TcpTransport::takeOver() {
    const int fd = takeDescriptor(m_dialer.socket);
    if (fd < 0)
        return; // as if refused: the connect loop asks again
    attach(fd, Kind::Socket);
}

void TcpTransport::close() {
    m_dialer.socket.abort();
    FdTransport::close();
}

void TcpTransport::connectToHost(const QString& host, quint16 port) {
    m_dialer.dial(host, port, isOpen());
}

QString TcpTransport::describe() const {
    return m_dialer.describe();
}

QString TcpTransport::lossReason(int) const {
    return QStringLiteral("closed by the PBX");
}

} // namespace larkspur
