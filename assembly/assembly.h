#pragma once

#include "core/qt_event_pump.h"
#include "link/real_transports.h"
#include "records/run_statistics.h"
#include "records/wire_trace.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <QObject>

namespace larkspur {

class EventPump;
class OperatorInterface;
class Transport;

// What the window and larkspur-run are both made of, wired once over the pump and transports
// they are given: the session, the script engine, the wire trace fed from the link, and the run
// statistics fed from the trace and the expected-message waits.
class Assembly : public QObject {
    Q_OBJECT
public:
    // `traceCapacity`: how many of the newest wire trace rows are kept in memory.
    Assembly(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial,
             qsizetype traceCapacity);

    Session session;
    ScriptEngine engine{session};
    WireTrace trace;
    RunStatistics statistics;

Q_SIGNALS:
    // A row of the statistics changed.
    void statisticsChanged();
};

// The real pump and transports of a program, made before the assembly that uses them.
struct RealLinks {
    QtEventPump pump;
    RealTcpTransport tcp;
    RealSerialTransport serial;
};

// A program's engine on the real pump and transports.
class ProgramAssembly : private RealLinks, public Assembly {
public:
    ProgramAssembly(OperatorInterface& op, qsizetype traceCapacity)
        : Assembly(RealLinks::pump, op, tcp, serial, traceCapacity) {}
    EventPump& pump() { return RealLinks::pump; }
};

} // namespace larkspur
