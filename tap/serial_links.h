#pragma once

#include "tap/tap_links.h"

#include <memory>

namespace larkspur {
class EventPump;
class SerialTransport;
} // namespace larkspur

namespace larkspur::tap {

class Relay;

// The serial relay (a port towards the PMS and one towards the PBX) or the passive monitor
// (receive-only ports on a Y-cable, one hearing each side, either of them may be left out; it
// never writes). A session runs while every named port is open; when one hangs up, all are
// closed and opened again every second until they all open.
class SerialLinks : public TapLinks {
    Q_OBJECT
public:
    static constexpr int reopenMs = 1000;

    // `line` is "SPEED,PARITY,DATA,STOP", already checked.
    SerialLinks(EventPump& pump, const QString& pmsPort, const QString& pbxPort,
                const QString& line, bool monitor, QObject* parent = nullptr);
    ~SerialLinks() override;

    bool start(QString* error) override;
    void stop() override;

private:
    // Opens every named port and starts a session; why one could not be opened otherwise.
    QString openPorts();
    void reopen();
    QString portName(Side side) const { return side == Side::Pms ? m_pmsPort : m_pbxPort; }

    EventPump& m_pump;
    QString m_pmsPort;
    QString m_pbxPort;
    QString m_line;
    bool m_monitor;
    bool m_stopped = false;
    QString m_lastRefusal;
    std::unique_ptr<SerialTransport> m_pms;
    std::unique_ptr<SerialTransport> m_pbx;
    std::unique_ptr<Relay> m_relay;
};

} // namespace larkspur::tap
