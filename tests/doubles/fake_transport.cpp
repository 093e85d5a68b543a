#include "doubles/fake_transport.h"

#include "core/virtual_event_pump.h"

namespace larkspur {

FakeTransport::FakeTransport(VirtualEventPump& pump, QString name)
    : InProcessTransport(pump, std::move(name)) {}

void FakeTransport::write(const QByteArray& bytes) {
    if (!isOpen())
        return;
    written.append(bytes);
    InProcessTransport::write(bytes);
    if (onWrite)
        onWrite(bytes);
}

void FakeTransport::close() {
    m_connecting = false;
    ++m_generation;
    InProcessTransport::close();
}

void FakeTransport::connectToHost(const QString& host, quint16 port) {
    if (m_connecting || isOpen())
        return;
    calls << QStringLiteral("connect %1:%2").arg(host).arg(port);
    if (acceptAfterMs < 0)
        return; // refused: the console asks again later
    m_connecting = true;
    const int generation = ++m_generation;
    pump().schedule(acceptAfterMs, this, [this, generation] {
        if (generation == m_generation) {
            m_connecting = false;
            open();
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
    open();
    return QString();
}

void FakeTransport::loseLink(const QString& reason, qint64 delayMs) {
    pump().schedule(delayMs, this, [this, reason] {
        if (!isOpen())
            return;
        close();
        Q_EMIT linkLost(reason);
    });
}

} // namespace larkspur
