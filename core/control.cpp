#include "core/control.h"

#include <iterator>

namespace larkspur {

namespace {
struct Design {
    const char* name;
    const char* caption;
    bool checked = false;
};

// In the order of the enumeration: each control's name and its caption as the window first
// shows it.
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
static_assert(std::size(designs) == size_t(Control::mnuAbout) + 1);
} // namespace

QString controlName(Control control) {
    return QString::fromLatin1(designs[size_t(control)].name);
}

QString initialCaption(Control control) {
    return QString::fromLatin1(designs[size_t(control)].caption);
}

bool initiallyChecked(Control control) {
    return designs[size_t(control)].checked;
}

std::optional<Control> controlNamed(const QString& name) {
    for (size_t i = 0; i < std::size(designs); ++i)
        if (name == QLatin1String(designs[i].name))
            return Control(i);
    return std::nullopt;
}

const QList<Control>& allControls() {
    static const QList<Control> controls = [] {
        QList<Control> all;
        for (size_t i = 0; i < std::size(designs); ++i)
            all << Control(i);
        return all;
    }();
    return controls;
}

const QList<Control>& transactionButtons() {
    using C = Control;
    static const QList<Control> controls = {
        C::cmd_chk_in,    C::cmd_chk_out,           C::cmd_name_1,
        C::Command6,      C::cmd_replace_name,      C::cmd_xfer_name,
        C::cmd_dept,      C::cmd_department_2,      C::cmd_department_3,
        C::cmd_loc,       C::cmd_location_2,        C::cmd_location_3,
        C::cmd_wakeup,    C::cmd_message_waiting_0, C::cmd_msg_wait,
        C::cmd_set_credit};
    return controls;
}

const QList<Control>& linkedSuiteButtons() {
    using C = Control;
    static const QList<Control> controls = {C::cmd_ste0, C::cmd_ste1, C::cmd_ste2, C::cmd_ste3,
                                            C::cmd_ste4, C::cmd_ste5, C::cmd_ste6, C::cmd_ste7,
                                            C::cmd_ste8, C::cmd_steA, C::cmd_steB};
    return controls;
}

const QList<Control>& manualLinkButtons() {
    using C = Control;
    static const QList<Control> controls = {C::cmd_enquiry_basic, C::cmd_grs, C::cmd_ayt,
                                            C::cmd_nak,           C::cmd_ack, C::cmd_end};
    return controls;
}

} // namespace larkspur
