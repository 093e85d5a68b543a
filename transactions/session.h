#pragma once

#include "core/control.h"
#include "link/link.h"
#include "records/error_records.h"
#include "records/traffic_log.h"
#include "transactions/console_state.h"
#include "transactions/fields.h"
#include "transactions/recording.h"
#include "transactions/send_sequences.h"

#include <QObject>
#include <QString>

#include <functional>

namespace larkspur {

class EventPump;
class OperatorInterface;
class SessionPress;
class Transport;

// What a session tells as it goes, for the run statistics, the JUnit report and the window.
class SessionEvents : public QObject {
    Q_OBJECT
Q_SIGNALS:
    // An expected-message wait starts, for at most `seconds` (0: without limit).
    void expectationStarted(const QString& item, int seconds);
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
};

// The console: its state and its transactions. It holds the link, the traffic log, the input
// fields, the error records and the script being recorded, and one state value that the window
// follows. The window only shows and drives it; the script runner and the headless player drive
// it the same way. Operations are named after the controls that start them.
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
    ErrorRecords& errors() { return m_errors; }
    // The script being recorded.
    Recording& recorder() { return m_recorder; }
    SessionEvents& events() { return m_events; }

    ConsoleState state() const;

    // Presses a transaction button (cmd_chk_in ... cmd_location_3, cmd_ste0 ... cmd_steB), as the
    // operator or the script runner does; any other control does nothing here.
    void press(Control button);
    // The restriction list: the level the chosen text names is sent.
    void cmb_restrict_Click(const QString& item);
    void send_station_restriction(const QString& level);
    // Sends the linked-suite message of `word`, "STE0" .. "STEB".
    void send_linked_suite(const QString& word);
    void cmd_ste_explain();

    // A menu entry or check box: mnuHotel, mnuVoiceMail, mnu_HIS, mnu_Hyatt; chk_error,
    // chk_linked_suite, chk_manual, chk_DTREnabled, chk_RTSEnabled, chk_NullDiscard,
    // Continuous with the box's new tick.
    void choose(Control control, bool checked = true);
    // Start-up: the menus tick the mode, protocol and transport the stored settings name.
    void applyModeAndLinkChoice();
    // A script sets the mode and the protocol it plays in; the captions follow, the menus not.
    void useScriptMode(PmsMode pmsMode, Protocol protocolType);
    void setScriptControls(ConsoleState::Script script);
    // The connection dialogs' OK: `change` edits the link settings.
    void changeLinkSettings(const std::function<void(LinkSettings&)>& change);

    // Connect and Disconnect buttons: the link's own, and the controls they switch.
    Link::ConnectResult cmd_connect(double connectLimitSeconds = 0);
    void cmd_disconnect();
    void cmd_clear();

    // `lastVmailMessage`: the last voice-mail frame sent (all operations but the mailbox
    // check-in).
    const QString& lastVmailMessage() const { return m_lastVmailMessage; }

Q_SIGNALS:
    void stateChanged(const larkspur::ConsoleState& state);

private:
    friend class SessionPress;
    // Announces the state when it changed.
    void changed();
    // Ticks a check box's option; false when `box` is none.
    bool chooseBox(Control box, bool checked);

    EventPump& m_pump;
    OperatorInterface& m_operator;
    TrafficLog m_log;
    Link m_link;
    Fields m_fields;
    ErrorRecords m_errors;
    Recording m_recorder;
    SessionEvents m_events;
    // The state but for what the link holds (mode, protocol, transport, line signals).
    ConsoleState m_state;
    ConsoleState m_announced;
    QString m_lastVmailMessage;
};

} // namespace larkspur
