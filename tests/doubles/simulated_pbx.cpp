#include "doubles/simulated_pbx.h"

#include "core/virtual_event_pump.h"
#include "sim/pbx_session.h"

namespace larkspur {

namespace {

sim::SimOptions quickLine() {
    sim::SimOptions options;
    options.answerDelaySeconds = 0.020;
    return options;
}

} // namespace

SimulatedPbx::SimulatedPbx(VirtualEventPump& pump, FakeTransport& transport)
    : options(quickLine()), m_pump(pump), m_peer(transport),
      m_session(std::make_unique<sim::PbxSession>(m_peer, options, m_tracer, m_pump)) {}

SimulatedPbx::~SimulatedPbx() = default;

void SimulatedPbx::setMode(sim::Mode mode) {
    options.mode = mode;
    m_session = std::make_unique<sim::PbxSession>(m_peer, options, m_tracer, m_pump);
}

} // namespace larkspur
