#include "sim/pbx_simulator.h"

#include "core/host_port.h"
#include "protocol/readable_notation.h"
#include "sim/pbx_session.h"
#include "sim/pseudo_terminal.h"
#include "sim/tcp_peer.h"
#include "sim/tracer.h"

#include <QTcpSocket>

namespace larkspur::sim {

namespace {

QString endpoint(const QHostAddress& address, quint16 port) {
    return formatHostPort(address.toString(), QString::number(port));
}

} // namespace

PbxSimulator::PbxSimulator(const SimOptions& options, Tracer& tracer, QObject* parent)
    : QObject(parent), m_options(options), m_tracer(tracer) {
    connect(&m_server, &QTcpServer::newConnection, this, &PbxSimulator::acceptConsole);
}

PbxSimulator::~PbxSimulator() = default;

bool PbxSimulator::start(QString* error) {
    if (m_options.listen) {
        if (!m_server.listen(m_options.listenAddress, m_options.listenPort)) {
            if (error)
                *error = QStringLiteral("cannot listen on %1: %2")
                             .arg(endpoint(m_options.listenAddress, m_options.listenPort),
                                  m_server.errorString());
            return false;
        }
        m_tracer.status(QStringLiteral("listening ") +
                        endpoint(m_server.serverAddress(), m_server.serverPort()));
    }
    if (m_options.pty) {
        m_pty = openPseudoTerminal(m_options.ptyLink, error);
        if (!m_pty)
            return false;
        m_tracer.status(QStringLiteral("pty ") + m_pty->slavePath());
        if (!m_options.ptyLink.isEmpty())
            m_tracer.status(
                QStringLiteral("link %1 -> %2").arg(m_options.ptyLink, m_pty->slavePath()));
        // A serial line has no connect: the console is as good as there once the pty is.
        connect(m_pty.get(), &Peer::stalled, this, [this](qsizetype unsent) {
            m_tracer.status(
                QStringLiteral("dropped %1 bytes for the pty: the console does not read them")
                    .arg(unsent));
        });
        m_ptySession = std::make_unique<PbxSession>(*m_pty, m_options, m_tracer, m_pump);
        m_ptySession->begin(false);
    }
    return true;
}

quint16 PbxSimulator::tcpPort() const {
    return m_server.isListening() ? m_server.serverPort() : 0;
}

QString PbxSimulator::ptyPath() const {
    return m_pty ? m_pty->slavePath() : QString();
}

bool PbxSimulator::sendLine(const QString& line, QString* error) {
    QString why;
    const QByteArray bytes = parseMessage(line, &why);
    if (why.isEmpty() && !m_tcpSession && !m_ptySession)
        why = QStringLiteral("no console is connected");
    if (!why.isEmpty()) {
        if (error)
            *error = why;
        return false;
    }
    for (PbxSession* session : {m_tcpSession.get(), m_ptySession.get()}) {
        if (session)
            session->send(bytes);
    }
    return true;
}

void PbxSimulator::acceptConsole() {
    // One console at a time: the next waits until this one leaves.
    if (m_tcpPeer)
        return;
    QTcpSocket* socket = m_server.nextPendingConnection();
    if (!socket)
        return;
    m_server.pauseAccepting();
    m_tcpPeer = new TcpPeer(socket, this);
    // Queued: a write inside the session's handling of a read can report the disconnect, and
    // the session must not go while it is still walking that read.
    connect(m_tcpPeer, &TcpPeer::disconnected, this, &PbxSimulator::dropConsole,
            Qt::QueuedConnection);
    const QString console = m_tcpPeer->description();
    connect(m_tcpPeer, &Peer::stalled, this, [this, console](qsizetype unsent) {
        m_tracer.status(
            QStringLiteral("dropped tcp %1: it does not read what it is sent (%2 bytes unsent)")
                .arg(console)
                .arg(unsent));
    });
    m_tracer.status(QStringLiteral("connected tcp ") + console);
    m_tcpSession = std::make_unique<PbxSession>(*m_tcpPeer, m_options, m_tracer, m_pump);
    m_tcpSession->begin(m_options.echoOffer);
}

void PbxSimulator::dropConsole() {
    if (!m_tcpPeer)
        return;
    m_tracer.status(QStringLiteral("disconnected"));
    m_tcpSession.reset();
    m_tcpPeer->deleteLater();
    m_tcpPeer = nullptr;
    m_server.resumeAccepting();
    acceptConsole(); // one may have been accepted in the same batch as the last
}

} // namespace larkspur::sim
