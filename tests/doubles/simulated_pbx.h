#pragma once

#include "assembly/in_process_pbx.h"

namespace larkspur {

// The simulator's PBX that a dry run plays against, as the tests use it: like a PBX on a quick
// line it answers every ENQ and frame with ACK 20 ms after it. A test changes `options` to have
// it refuse, keep silent or answer in a sequence.
class SimulatedPbx : public InProcessPbx {
public:
    SimulatedPbx(EventPump& pump, InProcessTransport& transport)
        : InProcessPbx(pump, transport, quickLine()) {}

private:
    static sim::SimOptions quickLine() {
        sim::SimOptions options;
        options.answerDelaySeconds = 0.020;
        return options;
    }
};

} // namespace larkspur
