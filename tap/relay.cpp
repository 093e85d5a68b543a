#include "tap/relay.h"

#include "core/event_pump.h"
#include "link/fd_transport.h"

namespace larkspur::tap {

Relay::Relay(EventPump& pump, FdTransport* pms, FdTransport* pbx, bool forward, QObject* parent)
    : QObject(parent), m_pump(pump), m_pms(pms), m_pbx(pbx), m_forward(forward) {
    for (const Side side : {Side::Pms, Side::Pbx}) {
        FdTransport* transport = end(side);
        if (!transport)
            continue;
        connect(transport, &Transport::dataReceived, this, [this, side] { onData(side); });
        connect(transport, &Transport::linkLost, this,
                [this, side](const QString& reason) { onHangUp(side, reason); });
        connect(transport, &FdTransport::drained, this, [this, side] { onDrained(side); });
    }
}

void Relay::onData(Side from) {
    FdTransport* source = end(from);
    const QByteArray bytes = source->readAll();
    if (bytes.isEmpty())
        return;
    FdTransport* target = end(otherSide(from));
    if (m_forward && target && target->isOpen()) {
        target->write(bytes);
        if (target->unsentBytes() > maxUnsentBytes)
            source->pauseReading(true);
    }
    Q_EMIT passed(from, bytes);
}

void Relay::onDrained(Side side) {
    if (m_ending) {
        finish();
        return;
    }
    // The end that backed up has taken everything: its sender may be read again.
    if (FdTransport* sender = end(otherSide(side)); sender && sender->isOpen())
        sender->pauseReading(false);
}

void Relay::onHangUp(Side side, const QString& reason) {
    if (m_ending) {
        finish();
        return;
    }
    m_ending = true;
    m_reason = QStringLiteral("the %1 hung up (%2: %3)")
                   .arg(sideName(side), end(side)->describe(), reason);
    FdTransport* other = end(otherSide(side));
    if (!other || !other->isOpen() || other->unsentBytes() == 0) {
        finish();
        return;
    }
    // What the hung-up side sent before it went is still on its way to the other side.
    other->pauseReading(true);
    m_pump.schedule(lastBytesMs, this, [this] { finish(); });
}

void Relay::close(const QString& reason) {
    if (m_ended)
        return;
    if (!m_ending)
        m_reason = reason;
    m_ending = true;
    finish();
}

void Relay::finish() {
    if (m_ended)
        return;
    m_ended = true;
    for (const Side side : {Side::Pms, Side::Pbx})
        if (FdTransport* transport = end(side))
            transport->close();
    Q_EMIT ended(m_reason);
}

} // namespace larkspur::tap
