#include "transactions/session.h"

namespace larkspur {

Session::Session(EventPump& eventPump, OperatorInterface& op, Transport& tcp, Transport& serial)
    : m_pump(eventPump), m_operator(op), m_link(eventPump, m_log, op, tcp, serial) {
    connect(&m_link, &Link::recordingStopped, this, [this] { m_recorder.suspend(); });
    connect(&m_link, &Link::connected, this, [this] {
        controls.setEnabled(Control::cmd_connect, false);
        controls.setEnabled(Control::cmd_disconnect, true);
        enable_transaction_controls();
    });
    connect(&m_link, &Link::disconnected, this, [this] { disable_transaction_controls(); });
    // A lost link is a disconnect the operator did not ask for: Connect is there to try again.
    connect(&m_link, &Link::linkLost, this, [this] {
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
