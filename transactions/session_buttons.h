#pragma once

#include "core/control.h"

#include <QList>

namespace larkspur {

class Session;

// What a button of the session starts.
using SessionOperation = void (Session::*)();
struct SessionButton {
    Control control;
    SessionOperation operation;
};

// Every button whose operation is the session's own, in the window's order.
const QList<SessionButton>& sessionButtons();
// The operation of the button `control`, or nullptr.
SessionOperation sessionOperation(Control control);

} // namespace larkspur
