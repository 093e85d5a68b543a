#pragma once

#include "records/side.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace larkspur::tap {

// Where the tap's traffic comes from: the TCP relay, the serial relay or the passive monitor. A
// session runs from the moment both sides can be heard until one of them hangs up; afterwards
// the links wait for the next one until stopped.
class TapLinks : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Starts listening, or opens the ports; false with the reason in `error` when it cannot.
    virtual bool start(QString* error) = 0;
    // Ends the session under way, if any, and starts no other.
    virtual void stop() = 0;

Q_SIGNALS:
    // A session began: "PMS 127.0.0.1:40312 connected".
    void opened(const QString& text);
    // What `from` sent, already passed on.
    void passed(larkspur::Side from, const QByteArray& bytes);
    // The session ended: who hung up, or why it could not go on.
    void closed(const QString& text);
    // Anything else the trace should show: where the tap listens, a PMS turned away.
    void note(const QString& text);
};

} // namespace larkspur::tap
