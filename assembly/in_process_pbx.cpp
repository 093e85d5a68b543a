#include "assembly/in_process_pbx.h"

#include "link/in_process_transport.h"
#include "sim/pbx_session.h"

namespace larkspur {

namespace {
// What the PBX writes reaches the console this long after, never in the same instant: a real
// answer is not there yet when the console first looks after its own write, so a dry run takes
// the same pauses (the connection test's second, a wait's first step) as a real run.
constexpr qint64 wireLatencyMs = 1;
} // namespace

InProcessPbx::Peer::Peer(InProcessTransport& transport) : m_transport(transport) {
    QObject::connect(&m_transport, &InProcessTransport::toFarEnd, this, &Peer::received);
}

bool InProcessPbx::Peer::write(const QByteArray& bytes) {
    if (!m_transport.isOpen())
        return false;
    m_transport.deliver(bytes, wireLatencyMs);
    return true;
}

InProcessPbx::InProcessPbx(EventPump& pump, InProcessTransport& transport,
                           sim::SimOptions pbxOptions)
    : options(std::move(pbxOptions)), m_pump(pump), m_transport(transport), m_peer(transport) {
    QObject::connect(&m_transport, &InProcessTransport::opened, &m_peer, [this] { begin(); });
    QObject::connect(&m_transport, &InProcessTransport::closed, &m_peer,
                     [this] { m_session.reset(); });
    if (m_transport.isOpen())
        begin();
}

InProcessPbx::~InProcessPbx() = default;

void InProcessPbx::setMode(sim::Mode mode) {
    options.mode = mode;
    if (m_session)
        begin();
}

void InProcessPbx::begin() {
    m_session = std::make_unique<sim::PbxSession>(m_peer, options, m_tracer, m_pump);
    m_session->begin(options.echoOffer);
}

} // namespace larkspur
