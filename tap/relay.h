#pragma once

#include "records/side.h"

#include <QByteArray>
#include <QObject>

namespace larkspur {
class EventPump;
class FdTransport;
} // namespace larkspur

namespace larkspur::tap {

// One session between the PMS end and the PBX end: what one end reads is written to the other
// at once, and only then announced for the trace, so tracing never holds a byte up. While more
// than maxUnsentBytes wait to leave one end, the other end is not read: the kernel holds its
// bytes and slows its sender down, so memory stays bounded and nothing is dropped. Either end
// hanging up ends the session; what the other end still has to send leaves first (for up to
// lastBytesMs), then both are closed.
class Relay : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype maxUnsentBytes = 64 * 1024;
    static constexpr int lastBytesMs = 2000;

    // The ends are open and stay owned by the caller; either may be null when only one side is
    // heard. Without `forward` nothing is ever written: the passive monitor.
    Relay(EventPump& pump, FdTransport* pms, FdTransport* pbx, bool forward,
          QObject* parent = nullptr);

    // Ends the session from outside at once: both ends are closed.
    void close(const QString& reason);
    bool isEnded() const { return m_ended; }

Q_SIGNALS:
    // `bytes` came from `from` and have been handed to the other end.
    void passed(larkspur::Side from, const QByteArray& bytes);
    // The session is over and both ends are closed: "the PMS hung up (127.0.0.1:40312: the
    // connection was closed)", or the reason given to close().
    void ended(const QString& reason);

private:
    FdTransport* end(Side side) const { return side == Side::Pms ? m_pms : m_pbx; }
    void onData(Side from);
    void onDrained(Side side);
    void onHangUp(Side side, const QString& reason);
    void finish();

    EventPump& m_pump;
    FdTransport* m_pms;
    FdTransport* m_pbx;
    bool m_forward;
    bool m_ending = false;
    bool m_ended = false;
    QString m_reason;
};

} // namespace larkspur::tap
