#pragma once

#include "assembly/assembly.h"
#include "assembly/in_process_pbx.h"
#include "core/clock_start.h"
#include "core/virtual_event_pump.h"
#include "link/in_process_transport.h"

namespace larkspur {

// Virtual time for a dry run: waits cost nothing, yet the program's own events (a termination
// signal) are still handled at every look at the pump.
class DryRunPump : public VirtualEventPump {
public:
    using VirtualEventPump::VirtualEventPump;
    void processEvents() override;
    bool waitForEvent(int milliseconds) override;
};

// The pump and the in-process links of a dry run, made before the assembly that uses them.
struct DryRunLinks {
    DryRunPump pump{clockStart()};
    InProcessTransport tcp{pump, QStringLiteral("TCP (dry run)")};
    InProcessTransport serial{pump, QStringLiteral("serial (dry run)")};
};

// A program's engine on virtual time, with the simulator's PBX behind both links inside the
// process: the same run as on the real pump and transports, but nothing is opened and the
// pauses and waits take no time.
class DryRunAssembly : private DryRunLinks, public Assembly {
public:
    DryRunAssembly(OperatorInterface& op, qsizetype traceCapacity,
                   const sim::SimOptions& pbxOptions);
    EventPump& pump() { return DryRunLinks::pump; }

    // The PBX reads frames the way of `mode` from the next connect on.
    void setPbxMode(sim::Mode mode);

private:
    InProcessPbx m_tcpPbx;
    InProcessPbx m_serialPbx;
};

} // namespace larkspur
