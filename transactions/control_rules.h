#pragma once

#include "core/control.h"
#include "transactions/console_state.h"

#include <QString>

#include <vector>

namespace larkspur {

// What the window shows of one control (button, check box, label, frame, list, menu entry).
struct ControlState {
    QString caption;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    bool operator==(const ControlState&) const = default;
};

// Every control as `state` shows it, indexed by Control: the relabelling by mode, the enabling by
// link and script, the menus' ticks and the frames the check boxes show.
std::vector<ControlState> controlStates(const ConsoleState& state);

} // namespace larkspur
