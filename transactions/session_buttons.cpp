#include "transactions/session_buttons.h"

#include "transactions/session.h"

namespace larkspur {

const QList<SessionButton>& sessionButtons() {
    static const QList<SessionButton> buttons = {
        {Control::cmd_chk_in, &Session::cmd_chk_in},
        {Control::cmd_chk_out, &Session::cmd_chk_out},
        {Control::cmd_name_1, &Session::cmd_name_1},
        {Control::Command6, &Session::Command6},
        {Control::cmd_replace_name, &Session::cmd_replace_name},
        {Control::cmd_xfer_name, &Session::cmd_xfer_name},
        {Control::cmd_msg_wait, &Session::cmd_msg_wait},
        {Control::cmd_message_waiting_0, &Session::cmd_message_waiting_0},
        {Control::cmd_set_credit, &Session::cmd_set_credit},
        {Control::cmd_wakeup, &Session::cmd_wakeup},
        {Control::cmd_dept, &Session::cmd_dept},
        {Control::cmd_department_2, &Session::cmd_department_2},
        {Control::cmd_department_3, &Session::cmd_department_3},
        {Control::cmd_loc, &Session::cmd_loc},
        {Control::cmd_location_2, &Session::cmd_location_2},
        {Control::cmd_location_3, &Session::cmd_location_3},
        {Control::cmd_ste0, &Session::cmd_ste0},
        {Control::cmd_ste1, &Session::cmd_ste1},
        {Control::cmd_ste2, &Session::cmd_ste2},
        {Control::cmd_ste3, &Session::cmd_ste3},
        {Control::cmd_ste4, &Session::cmd_ste4},
        {Control::cmd_ste5, &Session::cmd_ste5},
        {Control::cmd_ste6, &Session::cmd_ste6},
        {Control::cmd_ste7, &Session::cmd_ste7},
        {Control::cmd_ste8, &Session::cmd_ste8},
        {Control::cmd_steA, &Session::cmd_steA},
        {Control::cmd_steB, &Session::cmd_steB},
        {Control::cmd_ste_explain, &Session::cmd_ste_explain},
        {Control::cmd_disconnect, &Session::cmd_disconnect},
        {Control::cmd_clear, &Session::cmd_clear},
    };
    return buttons;
}

SessionOperation sessionOperation(Control control) {
    for (const SessionButton& button : sessionButtons())
        if (button.control == control)
            return button.operation;
    return nullptr;
}

} // namespace larkspur
