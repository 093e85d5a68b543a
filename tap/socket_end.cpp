#include "tap/socket_end.h"

#include "core/host_port.h"

#include <QHostAddress>

#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>

namespace larkspur::tap {

SocketEnd::SocketEnd(QObject* parent) : FdTransport(parent) {}

void SocketEnd::adopt(int fd, const QString& peer) {
    m_peer = peer;
    attach(fd, Kind::Socket);
}

QString SocketEnd::describe() const {
    return m_peer;
}

QString SocketEnd::lossReason(int error) const {
    return error == 0 ? QStringLiteral("the connection was closed")
                      : QString::fromLocal8Bit(std::strerror(error));
}

QString peerName(int fd) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (::getpeername(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return QStringLiteral("an unknown address");
    const auto* raw = reinterpret_cast<const sockaddr*>(&address);
    const quint16 port = address.ss_family == AF_INET6
                             ? ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port)
                             : ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
    return formatHostPort(QHostAddress(raw).toString(), QString::number(port));
}

} // namespace larkspur::tap
