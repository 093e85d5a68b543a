#pragma once

#include <QByteArray>
#include <QObject>

namespace larkspur::sim {

// The console's end of one link, TCP connection or pseudo-terminal.
class Peer : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // More answers than this waiting for the console means it does not read them: a console that
    // floods the simulator and never reads would otherwise grow the queue without bound.
    static constexpr qsizetype maxUnsentBytes = 64 * 1024;

    // Hands `bytes` to the link in one write, at once; false when the link cannot take them.
    virtual bool write(const QByteArray& bytes) = 0;

Q_SIGNALS:
    // One read's worth of bytes from the console.
    void received(const QByteArray& bytes);
    // The console left more than maxUnsentBytes unread; the peer gave up what was waiting.
    void stalled(qsizetype unsent);
};

} // namespace larkspur::sim
