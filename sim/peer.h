#pragma once

#include <QByteArray>
#include <QObject>

namespace larkspur::sim {

// The console's end of one link, TCP connection or pseudo-terminal.
class Peer : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Hands `bytes` to the link in one write, at once; false when the link cannot take them.
    virtual bool write(const QByteArray& bytes) = 0;

Q_SIGNALS:
    // One read's worth of bytes from the console.
    void received(const QByteArray& bytes);
};

} // namespace larkspur::sim
