#pragma once

#include "sim/peer.h"

namespace larkspur {

class FakeTransport;

// The PBX's end of a FakeTransport, for the simulator's session: what the console writes is
// received here, and what the session writes reaches the console as one read at once.
class FakeTransportPeer : public sim::Peer {
    Q_OBJECT
public:
    // Takes the transport's onWrite; `transport` must outlive the peer.
    explicit FakeTransportPeer(FakeTransport& transport);

    bool write(const QByteArray& bytes) override;

private:
    FakeTransport& m_transport;
};

} // namespace larkspur
