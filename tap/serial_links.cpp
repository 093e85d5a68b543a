#include "tap/serial_links.h"

#include "core/event_pump.h"
#include "link/serial_transport.h"
#include "tap/relay.h"

namespace larkspur::tap {

SerialLinks::SerialLinks(EventPump& pump, const QString& pmsPort, const QString& pbxPort,
                         const QString& line, bool monitor, QObject* parent)
    : TapLinks(parent), m_pump(pump), m_pmsPort(pmsPort), m_pbxPort(pbxPort), m_line(line),
      m_monitor(monitor) {}

SerialLinks::~SerialLinks() = default;

bool SerialLinks::start(QString* error) {
    *error = openPorts();
    return error->isEmpty();
}

QString SerialLinks::openPorts() {
    std::unique_ptr<SerialTransport> ready[2];
    for (const Side side : {Side::Pms, Side::Pbx}) {
        const QString name = portName(side);
        if (name.isEmpty())
            continue;
        auto port = std::make_unique<SerialTransport>();
        QString why = port->applySerialOptions(SerialOptions{m_line});
        if (why.isEmpty())
            why = port->openPort(name);
        if (!why.isEmpty())
            return QStringLiteral("cannot open the %1 port %2: %3").arg(sideName(side), name, why);
        ready[int(side)] = std::move(port);
    }
    m_pms = std::move(ready[int(Side::Pms)]);
    m_pbx = std::move(ready[int(Side::Pbx)]);
    m_lastRefusal.clear();
    m_relay = std::make_unique<Relay>(m_pump, m_pms.get(), m_pbx.get(), !m_monitor);
    connect(m_relay.get(), &Relay::passed, this, &TapLinks::passed);
    connect(m_relay.get(), &Relay::ended, this, [this](const QString& reason) {
        // Inside the ports' own signals: let go of them later.
        m_relay.release()->deleteLater();
        if (m_pms)
            m_pms.release()->deleteLater();
        if (m_pbx)
            m_pbx.release()->deleteLater();
        Q_EMIT closed(reason);
        if (!m_stopped)
            m_pump.schedule(reopenMs, this, [this] { reopen(); });
    });

    QStringList ports;
    for (const Side side : {Side::Pms, Side::Pbx})
        if (!portName(side).isEmpty())
            ports << QStringLiteral("the %1 on %2").arg(sideName(side), portName(side));
    Q_EMIT opened(
        (m_monitor ? QStringLiteral("monitor hearing ") : QStringLiteral("serial relay between ")) +
        ports.join(QStringLiteral(" and ")) + QStringLiteral(" at ") + m_line +
        (m_monitor ? QStringLiteral(", sending nothing") : ""));
    return QString();
}

void SerialLinks::reopen() {
    if (m_stopped || m_relay)
        return;
    const QString why = openPorts();
    if (why.isEmpty())
        return;
    // Said once, not every second.
    if (why != m_lastRefusal)
        Q_EMIT note(why + QStringLiteral("; trying again every second"));
    m_lastRefusal = why;
    m_pump.schedule(reopenMs, this, [this] { reopen(); });
}

void SerialLinks::stop() {
    m_stopped = true;
    if (m_relay)
        m_relay->close(QStringLiteral("the tap stopped"));
}

} // namespace larkspur::tap
