#pragma once

#include "protocol/wire_units.h"
#include "sim/paced_writer.h"
#include "sim/sim_options.h"

#include <QObject>

namespace larkspur {
class EventPump;
}

namespace larkspur::sim {

class Peer;
class Tracer;

// The PBX towards one connected console: answers its ENQs and frames, sends the --at and
// --after messages, and traces every read and write. Every delay runs on `pump`, so tests play
// the session in virtual time. Destroying it cancels what it still had to send.
class PbxSession : public QObject {
    Q_OBJECT
public:
    // `peer`, `options`, `tracer` and `pump` must outlive the session.
    PbxSession(Peer& peer, const SimOptions& options, Tracer& tracer, EventPump& pump,
               QObject* parent = nullptr);

    // The console has just connected: offers to echo when told to (a Telnet habit, so TCP only)
    // and starts the clocks of the --at messages.
    void begin(bool offerEcho);

    // Writes `bytes` to the console, in one write or paced as the options say, and traces each
    // write.
    void send(const QByteArray& bytes);

private:
    void onReceived(const QByteArray& bytes);
    void handle(const WireUnit& unit);
    void answer(const QList<Answer>& first, Answer then, int& answered);
    void sendLater(double seconds, const QByteArray& bytes);

    Peer& m_peer;
    const SimOptions& m_options;
    Tracer& m_tracer;
    EventPump& m_pump;
    PacedWriter m_writer;
    WireScanner m_scanner;
    // ENQs and frames answered so far, while they still count in the lists of first answers.
    int m_enqsAnswered = 0;
    int m_framesAnswered = 0;
};

} // namespace larkspur::sim
