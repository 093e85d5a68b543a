#include "transactions/controls.h"

namespace larkspur {

namespace {
struct Design {
    const char* name;
    const char* caption;
    bool checked = false;
};

// Every control with its caption as the window first shows it; leading blanks are part of it.
const Design designs[] = {
    {"cmd_connect", "&Connect"},
    {"cmd_disconnect", "&Disconnect"},
    {"chk_DTREnabled", "DTREn"},
    {"chk_RTSEnabled", "RTSEn"},
    {"chk_NullDiscard", "NullDiscard"},
    {"cmd_chk_in", "Check In"},
    {"cmd_chk_out", "Check Out"},
    {"cmd_name_1", "Add Name"},
    {"Command6", "Delete Name"},
    {"cmd_replace_name", "Replace Name"},
    {"cmd_xfer_name", "Transfer Name"},
    {"cmd_dept", "Add Depart."},
    {"cmd_department_2", "Replace Depart."},
    {"cmd_department_3", "Delete Depart."},
    {"cmd_loc", "Add Location"},
    {"cmd_location_2", "Replace Location"},
    {"cmd_location_3", "Delete Location"},
    {"cmd_msg_wait", "Mesg Waiting On"},
    {"cmd_message_waiting_0", "Msg Waiting Off"},
    {"cmd_wakeup", "Wake Up"},
    {"cmd_set_credit", "Set Credit"},
    {"cmb_restrict", ""},
    {"cmb_notify", ""},
    {"cmb_wait", ""},
    {"txt_ls_pilot", ""},
    {"txt_suite_1", ""},
    {"txt_suite_2", ""},
    {"txt_suite_3", ""},
    {"txt_suite_4", ""},
    {"Text1", ""},
    {"txt_department", ""},
    {"txt_location", ""},
    {"txt_time", ""},
    {"txt_credit", ""},
    {"cmd_start_script", "Start Rec. Script"},
    {"cmd_end_script", "End Rec. Script"},
    {"Xtest", "Run Script"},
    {"StopScript", "Stop Script"},
    {"Continuous", "Continuous"},
    {"cmd_cancel", "CANCEL"},
    {"cmd_recovery", "RECOVERY"},
    {"cmd_clear", "CLEAR"},
    {"cmd_open_logfile", "Open log file"},
    {"cmd_save_log", "Save log file"},
    {"cmd_view_log", "View log file"},
    {"cmd_new_error_file", "Start new log file"},
    {"chk_error", "Error Mode"},
    {"chk_linked_suite", "Enable Linked Suites"},
    {"fr_Linked_suite", "Linked Suite Functions"},
    {"cmd_ste0", "STE0"},
    {"cmd_ste1", "STE1"},
    {"cmd_ste2", "STE2"},
    {"cmd_ste3", "STE3"},
    {"cmd_ste4", "STE4"},
    {"cmd_ste5", "STE5"},
    {"cmd_ste6", "STE6"},
    {"cmd_ste7", "STE7"},
    {"cmd_ste8", "STE8"},
    {"cmd_steA", "STEA"},
    {"cmd_steB", "STEB"},
    {"cmd_ste_explain", "ste explaination"},
    {"chk_manual", "Manual Mode"},
    {"fr_manual_mode", "Manual Mode Functions"},
    {"cmd_end", "END"},
    {"cmd_ayt", "AYT"},
    {"cmd_grs", "&GRS"},
    {"cmd_ack", "&ACK"},
    {"cmd_nak", "&NAK"},
    {"cmd_enquiry_basic", "&ENQ"},
    {"Frame1", "Script Functions"},
    {"Label4", "Linked Suite Pilot:"},
    {"Label5", "Extension /Suite Pilot 1:"},
    {"Label6", "xfer ext. /Suite Pilot 2:"},
    {"Label7", "Suite Pilot 3:"},
    {"Label8", "Suite Pilot 4:"},
    {"Label9", "Department:"},
    {"lbl_department(0)", "Location:"},
    {"lbl_department(1)", "Location:"},
    {"Label10", "Name:"},
    {"Label_time", "Time"},
    {"Credit_label", "    Credit"},
    {"Label11", "  Station  Restrict"},
    {"label_wait(0)", "Notify:"},
    {"label_wait(1)", "  Wait:"},
    {"mnuFile", "File"},
    {"mnuExit", "Exit"},
    {"mnuOptions", "Options"},
    {"mnuPMS", "PMS Mode"},
    {"mnuHotel", "Hotel", true},
    {"mnuVoiceMail", "Voice Mail"},
    {"mnu_protocal", "Protocol"},
    {"mnu_HIS", "HIS"},
    {"mnu_Hyatt", "Hyatt Encore", true},
    {"mnuConnection", "Connection"},
    {"mnuCommport", "Comm Port"},
    {"mnuTelnet", "Telnet", true},
    {"mnuHelp", "Help"},
    {"mnuAbout", "About"},
};
} // namespace

Controls::Controls() {
    for (const Design& d : designs) {
        const QString name = QString::fromLatin1(d.name);
        m_states.insert(name, ControlState{QString::fromLatin1(d.caption), true, true, d.checked});
        m_order.append(name);
    }
    // The two optional frames start hidden.
    m_states[QStringLiteral("fr_Linked_suite")].visible = false;
    m_states[QStringLiteral("fr_manual_mode")].visible = false;
}

const ControlState& Controls::state(const QString& name) const {
    static const ControlState none;
    const auto it = m_states.constFind(name);
    Q_ASSERT_X(it != m_states.constEnd(), "Controls::state", qPrintable(name));
    return it == m_states.constEnd() ? none : *it;
}

template <typename T>
void Controls::update(const QString& name, T ControlState::*property, T value) {
    Q_ASSERT_X(m_states.contains(name), "Controls::update", qPrintable(name));
    T& current = m_states[name].*property;
    if (current != value) {
        current = std::move(value);
        Q_EMIT changed(name);
    }
}

void Controls::setCaption(const QString& name, const QString& caption) {
    update(name, &ControlState::caption, caption);
}

void Controls::setEnabled(const QString& name, bool enabled) {
    update(name, &ControlState::enabled, enabled);
}

void Controls::setVisible(const QString& name, bool visible) {
    update(name, &ControlState::visible, visible);
}

void Controls::setChecked(const QString& name, bool checked) {
    update(name, &ControlState::checked, checked);
}

void Controls::setEnabled(const QStringList& names, bool enabled) {
    for (const QString& name : names)
        setEnabled(name, enabled);
}

void Controls::setVisible(const QStringList& names, bool visible) {
    for (const QString& name : names)
        setVisible(name, visible);
}

const QStringList& transactionButtons() {
    static const QStringList names = {"cmd_chk_in",    "cmd_chk_out",           "cmd_name_1",
                                      "Command6",      "cmd_replace_name",      "cmd_xfer_name",
                                      "cmd_dept",      "cmd_department_2",      "cmd_department_3",
                                      "cmd_loc",       "cmd_location_2",        "cmd_location_3",
                                      "cmd_wakeup",    "cmd_message_waiting_0", "cmd_msg_wait",
                                      "cmd_set_credit"};
    return names;
}

const QStringList& linkedSuiteButtons() {
    static const QStringList names = {"cmd_ste0", "cmd_ste1", "cmd_ste2", "cmd_ste3",
                                      "cmd_ste4", "cmd_ste5", "cmd_ste6", "cmd_ste7",
                                      "cmd_ste8", "cmd_steA", "cmd_steB"};
    return names;
}

const QStringList& manualLinkButtons() {
    static const QStringList names = {"cmd_enquiry_basic", "cmd_grs", "cmd_ayt",
                                      "cmd_nak",           "cmd_ack", "cmd_end"};
    return names;
}

} // namespace larkspur
