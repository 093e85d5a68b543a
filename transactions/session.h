#pragma once

#include "link/link.h"
#include "records/error_records.h"
#include "records/traffic_log.h"
#include "transactions/controls.h"
#include "transactions/fields.h"
#include "transactions/recording.h"
#include "transactions/send_sequences.h"

#include <QObject>
#include <QString>

namespace larkspur {

class EventPump;
class OperatorInterface;
class Transport;

// The one home of the console's state: the link and its flags, the traffic log, the input
// fields, the error mode, the script being recorded. The window only shows and drives it; the
// script runner and the headless player drive it the same way. Each operation is named after
// the control that starts it.
class Session : public QObject {
    Q_OBJECT
public:
    Session(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial);

    EventPump& pump() { return m_pump; }
    OperatorInterface& operatorInterface() { return m_operator; }
    TrafficLog& log() { return m_log; }
    Link& link() { return m_link; }
    const Link& link() const { return m_link; }
    Fields& fields() { return m_fields; }
    const Fields& fields() const { return m_fields; }
    ErrorRecords& errors() { return m_errors; }
    // The script being recorded.
    Recording& recorder() { return m_recorder; }
    Controls controls;

    // "Error Mode": fields go out as typed, untrimmed and unchecked.
    bool errorMode() const { return m_errorMode; }

    // The last voice-mail frame sent (all operations but the mailbox check-in).
    const QString& lastVmailMessage() const { return m_lastVmailMessage; }
    void keepVmailMessage(const QString& frame) { m_lastVmailMessage = frame; }

    // Presses a transaction button (cmd_chk_in ... cmd_location_3, cmd_ste0 ... cmd_steB), as the
    // operator or the script runner does; any other control does nothing here.
    void press(Control button);
    // The restriction list: the level the chosen text names is sent.
    void cmb_restrict_Click(const QString& item);
    void send_station_restriction(const QString& level);
    // Sends the linked-suite message of `word`, "STE0" .. "STEB".
    void send_linked_suite(const QString& word);
    void cmd_ste_explain();

    // Tells how one message of a transaction ended; true when the PBX took it.
    bool reportSent(SendResult result, const QString& message);

    // The window's modes, menus and enabling rules.
    void set_hotel_labels();
    void set_vmail_labels();
    void disable_transaction_controls();
    void enable_transaction_controls();
    void mnuHotel_Click();
    void mnuVoiceMail_Click();
    void mnu_HIS_Click();
    void mnu_Hyatt_Click();
    void chk_error_Click(bool checked);
    void chk_linked_suite_Click(bool checked);
    void chk_manual_Click(bool checked);
    void cmd_clear();
    // Ticks the menus for the stored mode, protocol and transport and relabels for the mode.
    void applyModeAndLinkChoice();

    // Connect and Disconnect buttons: the link's own, plus the buttons they switch.
    Link::ConnectResult cmd_connect(double connectLimitSeconds = 0);
    void cmd_disconnect();

Q_SIGNALS:
    // An expected-message wait ended by success or time-out after `ms`.
    void expectationEnded(const QString& item, bool succeeded, qint64 ms);
    // An expected-message wait was ended by a stop or a lost link before either.
    void expectationStopped(const QString& item);
    // One message of a transaction reached its end: `message` is what was sent (the body, or a
    // voice-mail operation's log line).
    void transactionEnded(larkspur::SendResult result, const QString& message);
    // A transaction refused one of its fields: `text` is the line it logged ("Invalid Time!") or,
    // in voice mail, the notice it gave.
    void fieldRefused(const QString& text);
    // A transaction sent nothing because it refused its fields; `text` is everything it logged or
    // told, a line each.
    void pressRefused(const QString& text);

private:
    EventPump& m_pump;
    OperatorInterface& m_operator;
    TrafficLog m_log;
    Link m_link;
    Fields m_fields;
    ErrorRecords m_errors;
    Recording m_recorder;
    bool m_errorMode = false;
    QString m_lastVmailMessage;
};

} // namespace larkspur
