#pragma once

#include "core/pms_mode.h"

namespace larkspur {

// What the window shows of the console besides its fields and its log, as one value: captions,
// enabling, visibility and ticks all follow from it (transactions/control_rules.h).
struct ConsoleState {
    // The link as the buttons see it: not opened yet, up since a connection test passed, or down
    // since a disconnect or a loss.
    enum class Link { NotOpened, Up, Down };
    // Which script buttons are live: recording, or a run (which a CANCEL leaves looking as it
    // did until Stop Script or the next connect).
    enum class Script { Idle, Recording, Running };

    PmsMode pmsMode = PmsMode::Hotel;        // `pmsMode`: the captions follow it
    Protocol protocolType = Protocol::Hyatt; // `protocolType`
    // What the Options menu ticks: the operator's last choice (a script sets the mode and the
    // protocol without ticking them).
    PmsMode menuMode = PmsMode::Hotel;
    Protocol menuProtocol = Protocol::Hyatt;
    bool hisChoosable = true; // "HIS" can be chosen: not since "Hotel", until "Voice Mail"
    bool useTcp = true;       // "Telnet" is ticked, else "Comm Port"
    Link link = Link::NotOpened;
    Script script = Script::Idle;
    bool errorMode = false; // `errorMode`
    bool linkedSuites = false;
    bool manualMode = false;
    bool dtrEnabled = false;
    bool rtsEnabled = false;
    bool nullDiscard = false;
    bool continuous = false; // `Continuous`

    bool operator==(const ConsoleState&) const = default;
};

} // namespace larkspur
