#pragma once

#include "link/in_process_transport.h"

#include <QList>
#include <functional>

namespace larkspur {

class VirtualEventPump;

// An in-process transport the test drives: records every write and every open, connect and
// option call, refuses or delays when told, and loses its link on demand.
class FakeTransport : public InProcessTransport {
    Q_OBJECT
public:
    FakeTransport(VirtualEventPump& pump, QString name);

    void write(const QByteArray& bytes) override;
    void close() override;
    void connectToHost(const QString& host, quint16 port) override;
    QString applySerialOptions(const SerialOptions& options) override;
    QString openPort(const QString& portName) override;

    using InProcessTransport::receive;
    // The peer goes away `delayMs` from now, as a PBX that hangs up.
    void loseLink(const QString& reason, qint64 delayMs = 0);

    // Every write, in order, while the link was open.
    QList<QByteArray> written;
    // Every open, connect and option call, for the tests to check (e.g. "open /dev/ttyS0").
    QStringList calls;
    // Called with each write, after the far end heard it.
    std::function<void(const QByteArray&)> onWrite;
    // How the fake behaves when opened: TCP accepts after `acceptAfterMs` (refuses when < 0);
    // serial refuses with `refusal` when it is not empty.
    qint64 acceptAfterMs = 0;
    QString refusal;
    SerialOptions options;

private:
    bool m_connecting = false;
    int m_generation = 0;
};

} // namespace larkspur
