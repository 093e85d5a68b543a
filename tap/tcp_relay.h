#pragma once

#include "core/host_port.h"
#include "tap/tap_links.h"

#include <QTcpSocket>

#include <memory>

namespace larkspur {
class EventPump;
}

namespace larkspur::tap {

class Relay;
class SocketEnd;

// The TCP relay: listens for the PMS and, for each PMS that connects, connects to the PBX and
// relays between the two until either hangs up. What the PMS sends before the PBX has accepted
// waits in the kernel. One PMS at a time: another that connects meanwhile is turned away.
class TcpRelay : public TapLinks {
    Q_OBJECT
public:
    TcpRelay(EventPump& pump, const HostPort& listen, const HostPort& pbx,
             double connectTimeoutSeconds, QObject* parent = nullptr);
    ~TcpRelay() override;

    bool start(QString* error) override;
    void stop() override;

    // The port listened on (the real one when 0 was asked).
    quint16 port() const;

private:
    class Listener;
    void onPms(int fd);
    void onPbxConnected();
    void onPbxUnreachable(const QString& why);
    // Lets go of the session's ends and relay (later: this may run inside their own signals).
    void dropSession();

    EventPump& m_pump;
    HostPort m_listenAt;
    HostPort m_pbxAt;
    int m_connectTimeoutMs;
    std::unique_ptr<Listener> m_listener;
    QTcpSocket m_connector;
    // The session under way: its two ends and the relay between them once both are up.
    std::unique_ptr<SocketEnd> m_pms;
    std::unique_ptr<SocketEnd> m_pbx;
    std::unique_ptr<Relay> m_relay;
    int m_session = 0; // counts sessions, so a stale time-out knows it is stale
};

} // namespace larkspur::tap
