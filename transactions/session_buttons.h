#pragma once

#include <QList>
#include <QString>

namespace larkspur {

class Session;

// What a button of the session starts.
using SessionOperation = void (Session::*)();
struct SessionButton {
    QString name; // the control's name: "cmd_chk_in"
    SessionOperation operation;
};

// Every button whose operation is the session's own, in the window's order.
const QList<SessionButton>& sessionButtons();
// The operation of the button `name`, or nullptr.
SessionOperation sessionOperation(const QString& name);

} // namespace larkspur
