// The window's rules as one mapping from the console's state: captions and visibility per mode,
// enabling per link and script, the menus' ticks, the frames of the check boxes.
#include "transactions/control_rules.h"

namespace larkspur {

namespace {
using C = Control;

struct Relabel {
    Control control;
    const char* hotel;
    const char* vmail;
};

// Captions that change with the mode. Label6's hotel caption drops the blank before the slash
// that the first caption has; that is how the console has always shown it.
const Relabel relabels[] = {
    {C::cmd_name_1, "Add Name", "Query MW Status"},
    {C::Command6, "Delete Name", "Move Mailbox"},
    {C::cmd_replace_name, "Replace Name", "Text Msg MW"},
    {C::cmd_xfer_name, "Transfer Name", "Check IN (Pass)"},
    {C::cmd_dept, "Add Depart.", "Change Pass"},
    {C::cmd_department_2, "Replace Depart.", "Change ID"},
    {C::cmd_department_3, "Delete Depart.", "Modify FCOS"},
    {C::Label4, "Linked Suite Pilot:", "Mailbox Number:"},
    {C::Label5, "Extension /Suite Pilot 1:", "Passcode: "},
    {C::Label6, "xfer ext./Suite Pilot 2:", "Destination Mailbox"},
    {C::Label7, "Suite Pilot 3:", "New ID"},
    {C::Label8, "Suite Pilot 4:", "FCOS"},
    {C::Label9, "Department:", "Unread"},
};

// Controls with no meaning in voice-mail mode.
const Control hotelOnly[] = {C::cmd_loc,
                             C::cmd_location_2,
                             C::cmd_location_3,
                             C::cmd_wakeup,
                             C::cmd_message_waiting_0,
                             C::cmd_msg_wait,
                             C::cmd_set_credit,
                             C::cmb_restrict,
                             C::Label11,
                             C::label_wait_0,
                             C::cmb_wait,
                             C::cmb_notify,
                             C::label_wait_1,
                             C::chk_NullDiscard,
                             C::chk_RTSEnabled,
                             C::chk_DTREnabled,
                             C::txt_location,
                             C::lbl_department_0,
                             C::Text1,
                             C::Label10,
                             C::txt_time,
                             C::Label_time,
                             C::txt_credit,
                             C::Credit_label};

class Rules {
public:
    explicit Rules(std::vector<ControlState>& states) : m_states(states) {}
    ControlState& operator[](Control control) { return m_states[size_t(control)]; }
    void enable(const QList<Control>& controls, bool enabled) {
        for (Control control : controls)
            (*this)[control].enabled = enabled;
    }

private:
    std::vector<ControlState>& m_states;
};

// `set_hotel_labels` and `set_vmail_labels`.
void relabel(Rules& c, PmsMode mode) {
    const bool hotel = mode == PmsMode::Hotel;
    for (const Relabel& r : relabels)
        c[r.control].caption = QString::fromLatin1(hotel ? r.hotel : r.vmail);
    for (Control control : hotelOnly)
        c[control].visible = hotel;
}

// `disable_transaction_controls`, `enable_transaction_controls` and the script buttons.
void enableByLinkAndScript(Rules& c, const ConsoleState& s) {
    const bool up = s.link == ConsoleState::Link::Up;
    c[C::cmd_connect].enabled = !up;
    c[C::cmd_disconnect].enabled = s.link != ConsoleState::Link::Down;
    c.enable({C::mnuPMS, C::mnu_protocal, C::mnuConnection}, !up);
    c.enable(linkedSuiteButtons(), up);
    c.enable(manualLinkButtons(), up);
    const bool idle = s.script == ConsoleState::Script::Idle;
    const bool recording = s.script == ConsoleState::Script::Recording;
    const bool running = s.script == ConsoleState::Script::Running;
    c.enable(transactionButtons(), up && !running);
    c[C::cmd_start_script].enabled = up && idle;
    c[C::Xtest].enabled = up && idle;
    c[C::cmd_end_script].enabled = up && recording;
    c[C::StopScript].enabled = up && running;
}

void tickMenusAndBoxes(Rules& c, const ConsoleState& s) {
    c[C::mnuHotel].checked = s.menuMode == PmsMode::Hotel;
    c[C::mnuVoiceMail].checked = s.menuMode != PmsMode::Hotel;
    c[C::mnu_Hyatt].checked = s.menuProtocol == Protocol::Hyatt;
    c[C::mnu_HIS].checked = s.menuProtocol != Protocol::Hyatt;
    c[C::mnu_HIS].enabled = s.hisChoosable;
    c[C::mnuTelnet].checked = s.useTcp;
    c[C::mnuCommport].checked = !s.useTcp;
    c[C::chk_error].checked = s.errorMode;
    c[C::chk_linked_suite].checked = s.linkedSuites;
    c[C::fr_Linked_suite].visible = s.linkedSuites;
    c[C::chk_manual].checked = s.manualMode;
    c[C::fr_manual_mode].visible = s.manualMode;
    c[C::chk_DTREnabled].checked = s.dtrEnabled;
    c[C::chk_RTSEnabled].checked = s.rtsEnabled;
    c[C::chk_NullDiscard].checked = s.nullDiscard;
    c[C::Continuous].checked = s.continuous;
}
} // namespace

std::vector<ControlState> controlStates(const ConsoleState& state) {
    std::vector<ControlState> states;
    for (Control control : allControls())
        states.push_back({initialCaption(control), true, true, initiallyChecked(control)});
    Rules rules(states);
    relabel(rules, state.pmsMode);
    enableByLinkAndScript(rules, state);
    tickMenusAndBoxes(rules, state);
    return states;
}

} // namespace larkspur
