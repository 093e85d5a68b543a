#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace larkspur {

// Every control of the console window, named as the window names it; an element of a control
// array as "label_wait(1)" is label_wait_1 here.
enum class Control {
    cmd_connect,
    cmd_disconnect,
    chk_DTREnabled,
    chk_RTSEnabled,
    chk_NullDiscard,
    cmd_chk_in,
    cmd_chk_out,
    cmd_name_1,
    Command6,
    cmd_replace_name,
    cmd_xfer_name,
    cmd_dept,
    cmd_department_2,
    cmd_department_3,
    cmd_loc,
    cmd_location_2,
    cmd_location_3,
    cmd_msg_wait,
    cmd_message_waiting_0,
    cmd_wakeup,
    cmd_set_credit,
    cmb_restrict,
    cmb_notify,
    cmb_wait,
    txt_ls_pilot,
    txt_suite_1,
    txt_suite_2,
    txt_suite_3,
    txt_suite_4,
    Text1,
    txt_department,
    txt_location,
    txt_time,
    txt_credit,
    cmd_start_script,
    cmd_end_script,
    Xtest,
    StopScript,
    Continuous,
    cmd_cancel,
    cmd_recovery,
    cmd_clear,
    cmd_open_logfile,
    cmd_save_log,
    cmd_view_log,
    cmd_new_error_file,
    chk_error,
    chk_linked_suite,
    fr_Linked_suite,
    cmd_ste0,
    cmd_ste1,
    cmd_ste2,
    cmd_ste3,
    cmd_ste4,
    cmd_ste5,
    cmd_ste6,
    cmd_ste7,
    cmd_ste8,
    cmd_steA,
    cmd_steB,
    cmd_ste_explain,
    chk_manual,
    fr_manual_mode,
    cmd_end,
    cmd_ayt,
    cmd_grs,
    cmd_ack,
    cmd_nak,
    cmd_enquiry_basic,
    Frame1,
    Label4,
    Label5,
    Label6,
    Label7,
    Label8,
    Label9,
    lbl_department_0,
    lbl_department_1,
    Label10,
    Label_time,
    Credit_label,
    Label11,
    label_wait_0,
    label_wait_1,
    mnuFile,
    mnuExit,
    mnuOptions,
    mnuPMS,
    mnuHotel,
    mnuVoiceMail,
    mnu_protocal,
    mnu_HIS,
    mnu_Hyatt,
    mnuConnection,
    mnuCommport,
    mnuTelnet,
    mnuHelp,
    mnuAbout,
};

// The control's name in the window: "cmd_chk_in", "label_wait(1)".
QString controlName(Control control);
// The caption the window first shows (leading blanks are part of it), and whether it starts
// ticked.
QString initialCaption(Control control);
bool initiallyChecked(Control control);
// The control named `name`, if there is one.
std::optional<Control> controlNamed(const QString& name);
// Every control, in the window's order.
const QList<Control>& allControls();

// The sixteen hotel transaction buttons, the linked-suite buttons and the manual link buttons.
const QList<Control>& transactionButtons();
const QList<Control>& linkedSuiteButtons();
const QList<Control>& manualLinkButtons();

} // namespace larkspur
