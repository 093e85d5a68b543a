#include "doubles/fake_transport_peer.h"

#include "doubles/fake_transport.h"

namespace larkspur {

FakeTransportPeer::FakeTransportPeer(FakeTransport& transport) : m_transport(transport) {
    m_transport.onWrite = [this](const QByteArray& bytes) { Q_EMIT received(bytes); };
}

bool FakeTransportPeer::write(const QByteArray& bytes) {
    m_transport.receive(bytes);
    return true;
}

} // namespace larkspur
