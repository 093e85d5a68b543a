#pragma once

#include "sim/peer.h"

class QTcpSocket;

namespace larkspur::sim {

// A connected console over TCP.
class TcpPeer : public Peer {
    Q_OBJECT
public:
    // Takes `socket` over.
    explicit TcpPeer(QTcpSocket* socket, QObject* parent = nullptr);

    bool write(const QByteArray& bytes) override;

    // "ADDRESS:PORT" of the console.
    QString description() const;

Q_SIGNALS:
    // Once, when the console has gone.
    void disconnected();

private:
    void leave();

    QTcpSocket* m_socket;
    bool m_left = false;
};

} // namespace larkspur::sim
