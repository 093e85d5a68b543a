#pragma once

#include "core/qt_event_pump.h"
#include "sim/sim_options.h"

#include <QObject>
#include <QTcpServer>

#include <memory>

namespace larkspur::sim {

class PbxSession;
class PseudoTerminal;
class TcpPeer;
class Tracer;

// The simulated PBX: a TCP listener serving one console at a time and/or a pseudo-terminal,
// each with its own session.
class PbxSimulator : public QObject {
    Q_OBJECT
public:
    // `tracer` must outlive the simulator.
    PbxSimulator(const SimOptions& options, Tracer& tracer, QObject* parent = nullptr);
    ~PbxSimulator() override;

    // Starts listening and/or opens the pseudo-terminal; false with a reason in `error`.
    bool start(QString* error);

    // The port listened on (the real one when 0 was asked), 0 without a listener.
    quint16 tcpPort() const;

    // The slave side of the pseudo-terminal, empty without one.
    QString ptyPath() const;

    // Sends a typed line (readable notation, framed unless it frames itself) to every
    // connected console. False with a reason in `error` when the notation is wrong or no
    // console is there; nothing is sent then.
    bool sendLine(const QString& line, QString* error);

private:
    void acceptConsole();
    void dropConsole();

    SimOptions m_options;
    Tracer& m_tracer;
    // A listener and a pty live in real time, and so do the sessions they serve.
    QtEventPump m_pump;
    QTcpServer m_server;
    TcpPeer* m_tcpPeer = nullptr; // a child of this, deleted later: it is in its own signal
    std::unique_ptr<PbxSession> m_tcpSession;
    std::unique_ptr<PseudoTerminal> m_pty;
    std::unique_ptr<PbxSession> m_ptySession;
};

} // namespace larkspur::sim
