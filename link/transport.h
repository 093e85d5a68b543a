#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace larkspur {

// A serial line has no event for a carrier change; a light poll at this interval stands in for it.
inline constexpr int carrierPollMs = 200;

// Serial line options applied at each connect.
struct SerialOptions {
    QString lineSettings; // "9600,N,8,1"
    bool dtr = false;
    bool rts = false;
    bool nullDiscard = false;
};

// A byte pipe to the PBX. Each readyRead-style wake-up is one received message: the receiver
// reads everything pending and never joins or splits reads.
class Transport : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // TCP: connected; serial: port open. Nothing is written otherwise.
    virtual bool isOpen() const = 0;
    virtual void write(const QByteArray& bytes) = 0;
    virtual QByteArray readAll() = 0;
    virtual void close() = 0;

    // TCP only: starts connecting unless an attempt is under way; isOpen() turns true once the
    // peer accepted.
    virtual void connectToHost(const QString& host, quint16 port);
    // Serial only: the reason the options or the port were refused, or an empty text.
    virtual QString applySerialOptions(const SerialOptions& options);
    virtual QString openPort(const QString& portName);

    // What the link is, for the status bar: "TCP 127.0.0.1:15374", "serial /dev/ttyS0".
    virtual QString describe() const = 0;

Q_SIGNALS:
    void dataReceived();
    void carrierDetectChanged();
    // The peer or the device went away while the link was open.
    void linkLost(const QString& reason);
    // Something the operator should know that does not stop the link (DTR not drivable).
    void warning(const QString& text);
};

} // namespace larkspur
