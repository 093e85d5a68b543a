#pragma once

#include "doubles/fake_transport_peer.h"
#include "sim/sim_options.h"
#include "sim/tracer.h"

#include <memory>

namespace larkspur {

class FakeTransport;
class VirtualEventPump;

namespace sim {
class PbxSession;
}

// The simulator's PBX behind a FakeTransport, in the test's virtual time. Like a PBX on a quick
// line it answers every ENQ and frame with ACK 20 ms after it; a test changes `options`, which
// the session reads as it goes, to have it refuse, keep silent or answer in a sequence.
class SimulatedPbx {
public:
    // `pump` and `transport` must outlive the PBX.
    SimulatedPbx(VirtualEventPump& pump, FakeTransport& transport);
    ~SimulatedPbx();

    sim::SimOptions options;

    // The console changed between HOTEL and VMAIL, and the PBX reads frames its way from now on.
    // As after a new connect, what was still to be sent is dropped and the lists of first
    // answers start over.
    void setMode(sim::Mode mode);

private:
    VirtualEventPump& m_pump;
    FakeTransportPeer m_peer;
    sim::Tracer m_tracer; // without sinks: the tests look at the console's side
    std::unique_ptr<sim::PbxSession> m_session;
};

} // namespace larkspur
