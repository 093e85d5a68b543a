#include "transactions/session.h"

#include "link/frame.h"

namespace larkspur {

Session::Session(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial)
    : pump(pump), operatorInterface(op), link(pump, log, op, tcp, serial) {
    connect(&link, &Link::recordingStopped, this, [this] { recording = false; });
    connect(&link, &Link::connected, this, [this] {
        controls.setEnabled(QStringLiteral("cmd_connect"), false);
        controls.setEnabled(QStringLiteral("cmd_disconnect"), true);
        enable_transaction_controls();
    });
    connect(&link, &Link::disconnected, this, [this] {
        stopScript = true;
        disable_transaction_controls();
    });
}

void Session::record(const QString& line) {
    if (recording)
        scriptText += line + carriage_return();
}

} // namespace larkspur
