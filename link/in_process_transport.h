#pragma once

#include "link/transport.h"

namespace larkspur {

class EventPump;

// A transport whose far end runs in this process, on the same pump: the simulator of a dry run.
// Asked as TCP or as serial it opens without touching a socket or a device. What the console
// writes reaches the far end at once; what the far end sends arrives as one read at the pump's
// next pass, as it would from a socket.
class InProcessTransport : public Transport {
    Q_OBJECT
public:
    InProcessTransport(EventPump& pump, QString name);

    bool isOpen() const override { return m_open; }
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    void close() override;
    // Opens at the pump's next pass, as a connect that succeeds.
    void connectToHost(const QString& host, quint16 port) override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;
    QString describe() const override { return m_name; }

    // The far end sends `bytes`: one read for the console, `delayMs` from now.
    void deliver(const QByteArray& bytes, qint64 delayMs = 0);

Q_SIGNALS:
    void opened();
    void closed();
    // The console wrote `bytes` to the far end.
    void toFarEnd(const QByteArray& bytes);

protected:
    // Opens the link now and tells the far end.
    void open();
    // Hands `bytes` to the console as one read, now.
    void receive(const QByteArray& bytes);
    EventPump& pump() { return m_pump; }

private:
    EventPump& m_pump;
    QString m_name;
    QByteArray m_pending;
    bool m_open = false;
};

} // namespace larkspur
