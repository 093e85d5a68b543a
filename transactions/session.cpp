#include "transactions/session.h"

namespace larkspur {

Session::Session(EventPump& eventPump, OperatorInterface& op, Transport& tcp, Transport& serial)
    : pump(eventPump), operatorInterface(op), link(eventPump, log, op, tcp, serial) {
    connect(&link, &Link::recordingStopped, this, [this] { recorder.suspend(); });
    connect(&link, &Link::connected, this, [this] {
        controls.setEnabled(Control::cmd_connect, false);
        controls.setEnabled(Control::cmd_disconnect, true);
        enable_transaction_controls();
    });
    connect(&link, &Link::disconnected, this, [this] {
        requestScriptStop();
        disable_transaction_controls();
    });
    // A lost link is a disconnect the operator did not ask for: a running script stops, and
    // Connect is there to try again.
    connect(&link, &Link::linkLost, this, [this] {
        requestScriptStop();
        disable_transaction_controls();
        controls.setEnabled(Control::cmd_connect, true);
        controls.setEnabled(Control::cmd_disconnect, false);
    });
}

bool Session::reportSent(SendResult result, const QString& message) {
    Q_EMIT transactionEnded(result, message);
    return result == SendResult::Acknowledged || result == SendResult::AcknowledgedByStaleAck;
}

} // namespace larkspur
