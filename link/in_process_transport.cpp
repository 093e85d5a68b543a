#include "link/in_process_transport.h"

#include "core/event_pump.h"

namespace larkspur {

InProcessTransport::InProcessTransport(EventPump& pump, QString name)
    : m_pump(pump), m_name(std::move(name)) {}

void InProcessTransport::write(const QByteArray& bytes) {
    if (m_open)
        Q_EMIT toFarEnd(bytes);
}

QByteArray InProcessTransport::readAll() {
    return std::exchange(m_pending, QByteArray());
}

void InProcessTransport::close() {
    if (!std::exchange(m_open, false))
        return;
    Q_EMIT closed();
}

void InProcessTransport::connectToHost(const QString&, quint16) {
    m_pump.schedule(0, this, [this] {
        if (!m_open)
            open();
    });
}

QString InProcessTransport::applySerialOptions(const SerialOptions&) {
    return QString();
}

QString InProcessTransport::openPort(const QString&) {
    open();
    return QString();
}

void InProcessTransport::deliver(const QByteArray& bytes, qint64 delayMs) {
    m_pump.schedule(delayMs, this, [this, bytes] {
        if (m_open)
            receive(bytes);
    });
}

void InProcessTransport::open() {
    m_open = true;
    Q_EMIT opened();
}

void InProcessTransport::receive(const QByteArray& bytes) {
    m_pending = bytes;
    Q_EMIT dataReceived();
}

} // namespace larkspur
