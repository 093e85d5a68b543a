#pragma once

#include "link/fd_transport.h"

#include "link/tcp_dialer.h"

#include <QTcpSocket>

namespace larkspur {

// Readies a connected socket's descriptor for short messages that must leave at once:
// non-blocking, and no Nagle delay.
void readyForMessages(int fd);

// Takes the descriptor of the connected `socket` over: returns a duplicate readied for messages
// and leaves the socket closed, the connection open on the duplicate; -1 when it cannot.
int takeDescriptor(QTcpSocket& socket);

// The PBX over TCP. A QTcpSocket only connects (it resolves the host and reports a refusal);
// once connected, its descriptor is taken over and the bytes go through it directly.
class TcpTransport : public FdTransport {
    Q_OBJECT
public:
    explicit TcpTransport(QObject* parent = nullptr);

    void close() override;
    void connectToHost(const QString& host, quint16 port) override;
    QString describe() const override;

protected:
    QString lossReason(int error) const override;

private:
    void takeOver();

    TcpDialer m_dialer;
};

} // namespace larkspur
