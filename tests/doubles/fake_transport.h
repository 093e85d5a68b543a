#pragma once

#include "link/transport.h"

#include <QList>
#include <functional>

namespace larkspur {

class VirtualEventPump;

// A transport in virtual time: records every write and delivers scripted reads through the pump.
class FakeTransport : public Transport {
    Q_OBJECT
public:
    FakeTransport(VirtualEventPump& pump, QString name);

    bool isOpen() const override { return m_open; }
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    void close() override;
    void connectToHost(const QString& host, quint16 port) override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;
    QString describe() const override { return m_name; }

    // Hands `bytes` to the console as one read, now.
    void receive(const QByteArray& bytes);
    // Delivers `bytes` as one read, `delayMs` from now.
    void deliver(const QByteArray& bytes, qint64 delayMs = 0);
    // The peer goes away `delayMs` from now, as a PBX that hangs up.
    void loseLink(const QString& reason, qint64 delayMs = 0);

    // Every write, in order, while the link was open.
    QList<QByteArray> written;
    // Every open, connect and option call, for the tests to check (e.g. "open /dev/ttyS0").
    QStringList calls;
    // Called with each write (the simulated PBX hears the console here).
    std::function<void(const QByteArray&)> onWrite;
    // How the fake behaves when opened: TCP accepts after `acceptAfterMs` (refuses when < 0);
    // serial refuses with `refusal` when it is not empty.
    qint64 acceptAfterMs = 0;
    QString refusal;
    SerialOptions options;

private:
    VirtualEventPump& m_pump;
    QString m_name;
    QByteArray m_pending;
    bool m_open = false;
    bool m_connecting = false;
    int m_generation = 0;
};

} // namespace larkspur
