#pragma once

#include "sim/peer.h"
#include "sim/sim_options.h"
#include "sim/tracer.h"

#include <memory>

namespace larkspur {

class EventPump;
class InProcessTransport;

namespace sim {
class PbxSession;
}

// The simulator's PBX at the far end of an in-process transport, on the console's own pump: a
// dry run plays against it, and so do the tests. As the simulator does for each console, every
// open of the link starts a fresh session, which the close ends.
class InProcessPbx {
public:
    // `pump` and `transport` must outlive the PBX.
    InProcessPbx(EventPump& pump, InProcessTransport& transport, sim::SimOptions pbxOptions);
    ~InProcessPbx();
    InProcessPbx(const InProcessPbx&) = delete;
    InProcessPbx& operator=(const InProcessPbx&) = delete;

    // How it answers; the session reads them as it goes, so a change applies at once.
    sim::SimOptions options;

    // The console changed between HOTEL and VMAIL, and the PBX reads frames its way from now on.
    // As after a new connect, what was still to be sent is dropped and the lists of first
    // answers start over.
    void setMode(sim::Mode mode);

private:
    // The PBX's end of the transport.
    class Peer : public sim::Peer {
    public:
        explicit Peer(InProcessTransport& transport);
        bool write(const QByteArray& bytes) override;

    private:
        InProcessTransport& m_transport;
    };

    void begin();

    EventPump& m_pump;
    InProcessTransport& m_transport;
    Peer m_peer;
    sim::Tracer m_tracer; // without sinks: the console's own trace shows the wire
    std::unique_ptr<sim::PbxSession> m_session;
};

} // namespace larkspur
