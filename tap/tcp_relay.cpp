#include "tap/tcp_relay.h"

#include "core/event_pump.h"
#include "link/tcp_transport.h"
#include "tap/relay.h"
#include "tap/socket_end.h"

#include <QTcpServer>

#include <functional>
#include <unistd.h>

namespace larkspur::tap {

// Hands over each accepted connection's descriptor as it stands.
class TcpRelay::Listener : public QTcpServer {
public:
    explicit Listener(std::function<void(int)> accepted) : m_accepted(std::move(accepted)) {}

protected:
    void incomingConnection(qintptr fd) override { m_accepted(int(fd)); }

private:
    std::function<void(int)> m_accepted;
};

TcpRelay::TcpRelay(EventPump& pump, const HostPort& listen, const HostPort& pbx,
                   double connectTimeoutSeconds, QObject* parent)
    : TapLinks(parent), m_pump(pump), m_listenAt(listen), m_pbxAt(pbx),
      m_connectTimeoutMs(int(connectTimeoutSeconds * 1000)) {
    // Direct, so the descriptor changes hands before the socket has read a byte from it.
    connect(&m_connector, &QTcpSocket::connected, this, &TcpRelay::onPbxConnected);
    connect(&m_connector, &QTcpSocket::errorOccurred, this,
            [this] { onPbxUnreachable(m_connector.errorString()); });
}

TcpRelay::~TcpRelay() = default;

bool TcpRelay::start(QString* error) {
    m_listener = std::make_unique<Listener>([this](int fd) { onPms(fd); });
    if (!m_listener->listen(listenAddress(m_listenAt.host), m_listenAt.port)) {
        *error = QStringLiteral("cannot listen on %1: %2")
                     .arg(formatHostPort(m_listenAt.host, QString::number(m_listenAt.port)),
                          m_listener->errorString());
        return false;
    }
    Q_EMIT note(QStringLiteral("listening for the PMS on %1; the PBX is at %2")
                    .arg(formatHostPort(m_listenAt.host, QString::number(port())),
                         formatHostPort(m_pbxAt.host, QString::number(m_pbxAt.port))));
    return true;
}

quint16 TcpRelay::port() const {
    return m_listener ? m_listener->serverPort() : 0;
}

void TcpRelay::onPms(int fd) {
    const QString peer = peerName(fd);
    if (m_pms) {
        ::close(fd);
        Q_EMIT note(
            QStringLiteral("another PMS at %1 was turned away: one PMS at a time").arg(peer));
        return;
    }
    readyForMessages(fd);
    ++m_session;
    m_pms = std::make_unique<SocketEnd>();
    m_pms->adopt(fd, peer);
    // Until the PBX has accepted, what the PMS sends waits in the kernel.
    m_pms->pauseReading(true);
    Q_EMIT opened(QStringLiteral("PMS %1 connected; connecting to the PBX at %2")
                      .arg(peer, formatHostPort(m_pbxAt.host, QString::number(m_pbxAt.port))));
    m_connector.connectToHost(m_pbxAt.host, m_pbxAt.port);
    m_pump.schedule(m_connectTimeoutMs, this, [this, session = m_session] {
        if (session == m_session && m_pms && !m_relay)
            onPbxUnreachable(
                QStringLiteral("no answer within %1 s").arg(double(m_connectTimeoutMs) / 1000));
    });
}

void TcpRelay::onPbxConnected() {
    const int fd = takeDescriptor(m_connector);
    if (!m_pms || fd < 0) {
        if (fd >= 0)
            ::close(fd);
        if (m_pms)
            onPbxUnreachable(QStringLiteral("its connection could not be taken over"));
        return;
    }
    m_pbx = std::make_unique<SocketEnd>();
    m_pbx->adopt(fd, formatHostPort(m_pbxAt.host, QString::number(m_pbxAt.port)));
    m_relay = std::make_unique<Relay>(m_pump, m_pms.get(), m_pbx.get(), true);
    connect(m_relay.get(), &Relay::passed, this, &TapLinks::passed);
    connect(m_relay.get(), &Relay::ended, this, [this](const QString& reason) {
        dropSession();
        Q_EMIT closed(reason);
    });
    m_pms->pauseReading(false);
    Q_EMIT note(QStringLiteral("the PBX at %1 accepted; relaying").arg(m_pbx->describe()));
}

void TcpRelay::onPbxUnreachable(const QString& why) {
    if (!m_pms || m_relay)
        return;
    m_pms->close();
    dropSession();
    Q_EMIT closed(QStringLiteral("the PBX at %1 cannot be reached (%2); the PMS was closed")
                      .arg(formatHostPort(m_pbxAt.host, QString::number(m_pbxAt.port)), why));
}

void TcpRelay::dropSession() {
    if (m_relay)
        m_relay.release()->deleteLater();
    if (m_pms)
        m_pms.release()->deleteLater();
    if (m_pbx)
        m_pbx.release()->deleteLater();
    m_connector.abort();
}

void TcpRelay::stop() {
    if (m_listener)
        m_listener->close();
    if (m_relay)
        m_relay->close(QStringLiteral("the tap stopped"));
    else if (m_pms)
        onPbxUnreachable(QStringLiteral("the tap stopped first"));
}

} // namespace larkspur::tap
