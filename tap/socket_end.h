#pragma once

#include "link/fd_transport.h"

namespace larkspur::tap {

// One end of the TCP relay: the socket the PMS connected on, or the one to the PBX.
class SocketEnd : public FdTransport {
    Q_OBJECT
public:
    explicit SocketEnd(QObject* parent = nullptr);

    // Takes over `fd`, a connected socket readied for messages, whose far end is `peer`.
    void adopt(int fd, const QString& peer);
    // The far end: "127.0.0.1:40312".
    QString describe() const override;

protected:
    QString lossReason(int error) const override;

private:
    QString m_peer;
};

// "127.0.0.1:40312": the far end of a connected socket.
QString peerName(int fd);

} // namespace larkspur::tap
