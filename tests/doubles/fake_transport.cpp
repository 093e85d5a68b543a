#include "doubles/fake_transport.h"

#include "core/virtual_event_pump.h"

namespace larkspur {

FakeTransport::FakeTransport(VirtualEventPump& pump, QString name)
    : m_pump(pump), m_name(std::move(name)) {}

void FakeTransport::write(const QByteArray& bytes) {
    if (!m_open)
        return;
    written.append(bytes);
    if (onWrite)
        onWrite(bytes);
}

QByteArray FakeTransport::readAll() {
    return std::exchange(m_pending, QByteArray());
}

void FakeTransport::close() {
    m_open = false;
    m_connecting = false;
    ++m_generation;
}

void FakeTransport::connectToHost(const QString& host, quint16 port) {
    if (m_connecting || m_open)
        return;
    calls << QStringLiteral("connect %1:%2").arg(host).arg(port);
    if (acceptAfterMs < 0)
        return; // refused: the console asks again later
    m_connecting = true;
    const int generation = ++m_generation;
    m_pump.schedule(acceptAfterMs, [this, generation] {
        if (generation == m_generation) {
            m_open = true;
            m_connecting = false;
        }
    });
}

QString FakeTransport::applySerialOptions(const SerialOptions& opts) {
    calls << QStringLiteral("options %1").arg(opts.lineSettings);
    options = opts;
    return QString();
}

QString FakeTransport::openPort(const QString& portName) {
    calls << QStringLiteral("open %1").arg(portName);
    if (!refusal.isEmpty())
        return refusal;
    m_open = true;
    return QString();
}

void FakeTransport::loseLink(const QString& reason, qint64 delayMs) {
    m_pump.schedule(delayMs, [this, reason] {
        if (!m_open)
            return;
        close();
        Q_EMIT linkLost(reason);
    });
}

void FakeTransport::receive(const QByteArray& bytes) {
    m_pending = bytes;
    Q_EMIT dataReceived();
}

void FakeTransport::deliver(const QByteArray& bytes, qint64 delayMs) {
    m_pump.schedule(delayMs, [this, bytes] { receive(bytes); });
}

} // namespace larkspur
