// The window's rules as data: captions and visibility per mode, enabling per link state, and the
// menu and check-box commands. The window mirrors `controls`.
#include "transactions/session.h"

namespace larkspur {

namespace {
struct Relabel {
    const char* control;
    const char* hotel;
    const char* vmail;
};

// Captions that change with the mode. Label6's hotel caption drops the blank before the slash
// that the first caption has; that is how the console has always shown it.
const Relabel relabels[] = {
    {"cmd_name_1", "Add Name", "Query MW Status"},
    {"Command6", "Delete Name", "Move Mailbox"},
    {"cmd_replace_name", "Replace Name", "Text Msg MW"},
    {"cmd_xfer_name", "Transfer Name", "Check IN (Pass)"},
    {"cmd_dept", "Add Depart.", "Change Pass"},
    {"cmd_department_2", "Replace Depart.", "Change ID"},
    {"cmd_department_3", "Delete Depart.", "Modify FCOS"},
    {"Label4", "Linked Suite Pilot:", "Mailbox Number:"},
    {"Label5", "Extension /Suite Pilot 1:", "Passcode: "},
    {"Label6", "xfer ext./Suite Pilot 2:", "Destination Mailbox"},
    {"Label7", "Suite Pilot 3:", "New ID"},
    {"Label8", "Suite Pilot 4:", "FCOS"},
    {"Label9", "Department:", "Unread"},
};

// Controls with no meaning in voice-mail mode.
const QStringList hotelOnly = {"cmd_loc",
                               "cmd_location_2",
                               "cmd_location_3",
                               "cmd_wakeup",
                               "cmd_message_waiting_0",
                               "cmd_msg_wait",
                               "cmd_set_credit",
                               "cmb_restrict",
                               "Label11",
                               "label_wait(0)",
                               "cmb_wait",
                               "cmb_notify",
                               "label_wait(1)",
                               "chk_NullDiscard",
                               "chk_RTSEnabled",
                               "chk_DTREnabled",
                               "txt_location",
                               "lbl_department(0)",
                               "Text1",
                               "Label10",
                               "txt_time",
                               "Label_time",
                               "txt_credit",
                               "Credit_label"};

const QStringList linkChoiceMenus = {"mnuPMS", "mnu_protocal", "mnuConnection"};

void relabel(Controls& controls, bool hotel) {
    for (const Relabel& r : relabels)
        controls.setCaption(QString::fromLatin1(r.control),
                            QString::fromLatin1(hotel ? r.hotel : r.vmail));
    controls.setVisible(hotelOnly, hotel);
}
} // namespace

void Session::set_hotel_labels() {
    relabel(controls, true);
}

void Session::set_vmail_labels() {
    relabel(controls, false);
    // Voice mail uses the fourth suite field and the department field; hotel mode leaves them be.
    controls.setVisible(QStringLiteral("txt_suite_4"), true);
    controls.setVisible(QStringLiteral("txt_department"), true);
}

void Session::disable_transaction_controls() {
    controls.setEnabled(transactionButtons(), false);
    controls.setEnabled({"cmd_start_script", "cmd_end_script", "Xtest", "StopScript"}, false);
    controls.setEnabled(linkedSuiteButtons(), false);
    controls.setEnabled(manualLinkButtons(), false);
    controls.setEnabled(linkChoiceMenus, true);
}

void Session::enable_transaction_controls() {
    // End Rec. Script and Stop Script are left to the script commands.
    controls.setEnabled(transactionButtons(), true);
    controls.setEnabled({"cmd_start_script", "Xtest"}, true);
    controls.setEnabled(linkedSuiteButtons(), true);
    controls.setEnabled(manualLinkButtons(), true);
    controls.setEnabled(linkChoiceMenus, false);
}

void Session::mnuHotel_Click() {
    controls.setChecked(QStringLiteral("mnuHotel"), true);
    controls.setChecked(QStringLiteral("mnuVoiceMail"), false);
    controls.setEnabled(QStringLiteral("mnu_HIS"), false);
    controls.setChecked(QStringLiteral("mnu_HIS"), false);
    controls.setChecked(QStringLiteral("mnu_Hyatt"), true);
    link.protocolType = QStringLiteral("HYATT");
    link.pmsMode = QStringLiteral("HOTEL");
    set_hotel_labels();
}

void Session::mnuVoiceMail_Click() {
    controls.setChecked(QStringLiteral("mnuHotel"), false);
    controls.setChecked(QStringLiteral("mnuVoiceMail"), true);
    controls.setEnabled(QStringLiteral("mnu_HIS"), true);
    link.pmsMode = QStringLiteral("VMAIL");
    set_vmail_labels();
}

void Session::mnu_HIS_Click() {
    link.protocolType = QStringLiteral("HIS");
    controls.setChecked(QStringLiteral("mnu_Hyatt"), false);
    controls.setChecked(QStringLiteral("mnu_HIS"), true);
}

void Session::mnu_Hyatt_Click() {
    link.protocolType = QStringLiteral("HYATT");
    controls.setChecked(QStringLiteral("mnu_Hyatt"), true);
    controls.setChecked(QStringLiteral("mnu_HIS"), false);
}

void Session::chk_error_Click(bool checked) {
    m_errorMode = checked;
    controls.setChecked(QStringLiteral("chk_error"), checked);
}

void Session::chk_linked_suite_Click(bool checked) {
    controls.setChecked(QStringLiteral("chk_linked_suite"), checked);
    controls.setVisible(QStringLiteral("fr_Linked_suite"), checked);
}

void Session::chk_manual_Click(bool checked) {
    controls.setChecked(QStringLiteral("chk_manual"), checked);
    controls.setVisible(QStringLiteral("fr_manual_mode"), checked);
}

void Session::cmd_clear() {
    log.clearDisplay();
}

void Session::applyModeAndLinkChoice() {
    const bool hyatt = link.protocolType == u"HYATT";
    controls.setChecked(QStringLiteral("mnu_Hyatt"), hyatt);
    controls.setChecked(QStringLiteral("mnu_HIS"), !hyatt);
    controls.setChecked(QStringLiteral("mnuTelnet"), link.settings.useTcp);
    controls.setChecked(QStringLiteral("mnuCommport"), !link.settings.useTcp);
    const bool hotel = link.pmsMode == u"HOTEL";
    controls.setChecked(QStringLiteral("mnuHotel"), hotel);
    controls.setChecked(QStringLiteral("mnuVoiceMail"), !hotel);
    if (hotel)
        set_hotel_labels();
    else
        set_vmail_labels();
}

Link::ConnectResult Session::cmd_connect(double connectLimitSeconds) {
    return link.cmd_connect(connectLimitSeconds);
}

void Session::cmd_disconnect() {
    link.cmd_disconnect();
    controls.setEnabled(QStringLiteral("cmd_connect"), true);
    controls.setEnabled(QStringLiteral("cmd_disconnect"), false);
}

} // namespace larkspur
