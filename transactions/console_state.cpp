// The window's rules as data: captions and visibility per mode, enabling per link state, and the
// menu and check-box commands. The window mirrors `controls`.
#include "transactions/session.h"

namespace larkspur {

namespace {
struct Relabel {
    Control control;
    const char* hotel;
    const char* vmail;
};

// Captions that change with the mode. Label6's hotel caption drops the blank before the slash
// that the first caption has; that is how the console has always shown it.
const Relabel relabels[] = {
    {Control::cmd_name_1, "Add Name", "Query MW Status"},
    {Control::Command6, "Delete Name", "Move Mailbox"},
    {Control::cmd_replace_name, "Replace Name", "Text Msg MW"},
    {Control::cmd_xfer_name, "Transfer Name", "Check IN (Pass)"},
    {Control::cmd_dept, "Add Depart.", "Change Pass"},
    {Control::cmd_department_2, "Replace Depart.", "Change ID"},
    {Control::cmd_department_3, "Delete Depart.", "Modify FCOS"},
    {Control::Label4, "Linked Suite Pilot:", "Mailbox Number:"},
    {Control::Label5, "Extension /Suite Pilot 1:", "Passcode: "},
    {Control::Label6, "xfer ext./Suite Pilot 2:", "Destination Mailbox"},
    {Control::Label7, "Suite Pilot 3:", "New ID"},
    {Control::Label8, "Suite Pilot 4:", "FCOS"},
    {Control::Label9, "Department:", "Unread"},
};

// Controls with no meaning in voice-mail mode.
const QList<Control> hotelOnly = {Control::cmd_loc,
                                  Control::cmd_location_2,
                                  Control::cmd_location_3,
                                  Control::cmd_wakeup,
                                  Control::cmd_message_waiting_0,
                                  Control::cmd_msg_wait,
                                  Control::cmd_set_credit,
                                  Control::cmb_restrict,
                                  Control::Label11,
                                  Control::label_wait_0,
                                  Control::cmb_wait,
                                  Control::cmb_notify,
                                  Control::label_wait_1,
                                  Control::chk_NullDiscard,
                                  Control::chk_RTSEnabled,
                                  Control::chk_DTREnabled,
                                  Control::txt_location,
                                  Control::lbl_department_0,
                                  Control::Text1,
                                  Control::Label10,
                                  Control::txt_time,
                                  Control::Label_time,
                                  Control::txt_credit,
                                  Control::Credit_label};

const QList<Control> linkChoiceMenus = {Control::mnuPMS, Control::mnu_protocal,
                                        Control::mnuConnection};

void relabel(Controls& controls, bool hotel) {
    for (const Relabel& r : relabels)
        controls.setCaption(r.control, QString::fromLatin1(hotel ? r.hotel : r.vmail));
    controls.setVisible(hotelOnly, hotel);
}
} // namespace

void Session::set_hotel_labels() {
    relabel(controls, true);
}

void Session::set_vmail_labels() {
    relabel(controls, false);
    // Voice mail uses the fourth suite field and the department field; hotel mode leaves them be.
    controls.setVisible(Control::txt_suite_4, true);
    controls.setVisible(Control::txt_department, true);
}

void Session::disable_transaction_controls() {
    controls.setEnabled(transactionButtons(), false);
    controls.setEnabled(
        {Control::cmd_start_script, Control::cmd_end_script, Control::Xtest, Control::StopScript},
        false);
    controls.setEnabled(linkedSuiteButtons(), false);
    controls.setEnabled(manualLinkButtons(), false);
    controls.setEnabled(linkChoiceMenus, true);
}

void Session::enable_transaction_controls() {
    // End Rec. Script and Stop Script are left to the script commands.
    controls.setEnabled(transactionButtons(), true);
    controls.setEnabled({Control::cmd_start_script, Control::Xtest}, true);
    controls.setEnabled(linkedSuiteButtons(), true);
    controls.setEnabled(manualLinkButtons(), true);
    controls.setEnabled(linkChoiceMenus, false);
}

void Session::mnuHotel_Click() {
    controls.setChecked(Control::mnuHotel, true);
    controls.setChecked(Control::mnuVoiceMail, false);
    controls.setEnabled(Control::mnu_HIS, false);
    controls.setChecked(Control::mnu_HIS, false);
    controls.setChecked(Control::mnu_Hyatt, true);
    m_link.setMode(m_link.pmsMode(), Protocol::Hyatt);
    m_link.setMode(PmsMode::Hotel, m_link.protocolType());
    set_hotel_labels();
}

void Session::mnuVoiceMail_Click() {
    controls.setChecked(Control::mnuHotel, false);
    controls.setChecked(Control::mnuVoiceMail, true);
    controls.setEnabled(Control::mnu_HIS, true);
    m_link.setMode(PmsMode::Vmail, m_link.protocolType());
    set_vmail_labels();
}

void Session::mnu_HIS_Click() {
    m_link.setMode(m_link.pmsMode(), Protocol::His);
    controls.setChecked(Control::mnu_Hyatt, false);
    controls.setChecked(Control::mnu_HIS, true);
}

void Session::mnu_Hyatt_Click() {
    m_link.setMode(m_link.pmsMode(), Protocol::Hyatt);
    controls.setChecked(Control::mnu_Hyatt, true);
    controls.setChecked(Control::mnu_HIS, false);
}

void Session::chk_error_Click(bool checked) {
    m_errorMode = checked;
    controls.setChecked(Control::chk_error, checked);
}

void Session::chk_linked_suite_Click(bool checked) {
    controls.setChecked(Control::chk_linked_suite, checked);
    controls.setVisible(Control::fr_Linked_suite, checked);
}

void Session::chk_manual_Click(bool checked) {
    controls.setChecked(Control::chk_manual, checked);
    controls.setVisible(Control::fr_manual_mode, checked);
}

void Session::cmd_clear() {
    m_log.clearDisplay();
}

void Session::applyModeAndLinkChoice() {
    const bool hyatt = m_link.protocolType() == Protocol::Hyatt;
    controls.setChecked(Control::mnu_Hyatt, hyatt);
    controls.setChecked(Control::mnu_HIS, !hyatt);
    controls.setChecked(Control::mnuTelnet, m_link.settings().useTcp);
    controls.setChecked(Control::mnuCommport, !m_link.settings().useTcp);
    const bool hotel = m_link.pmsMode() == PmsMode::Hotel;
    controls.setChecked(Control::mnuHotel, hotel);
    controls.setChecked(Control::mnuVoiceMail, !hotel);
    if (hotel)
        set_hotel_labels();
    else
        set_vmail_labels();
}

Link::ConnectResult Session::cmd_connect(double connectLimitSeconds) {
    return m_link.cmd_connect(connectLimitSeconds);
}

void Session::cmd_disconnect() {
    m_link.cmd_disconnect();
    controls.setEnabled(Control::cmd_connect, true);
    controls.setEnabled(Control::cmd_disconnect, false);
}

} // namespace larkspur
