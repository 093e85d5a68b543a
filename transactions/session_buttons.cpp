#include "transactions/session_buttons.h"

#include "transactions/session.h"

namespace larkspur {

const QList<SessionButton>& sessionButtons() {
    static const QList<SessionButton> buttons = {
        {"cmd_chk_in", &Session::cmd_chk_in},
        {"cmd_chk_out", &Session::cmd_chk_out},
        {"cmd_name_1", &Session::cmd_name_1},
        {"Command6", &Session::Command6},
        {"cmd_replace_name", &Session::cmd_replace_name},
        {"cmd_xfer_name", &Session::cmd_xfer_name},
        {"cmd_msg_wait", &Session::cmd_msg_wait},
        {"cmd_message_waiting_0", &Session::cmd_message_waiting_0},
        {"cmd_set_credit", &Session::cmd_set_credit},
        {"cmd_wakeup", &Session::cmd_wakeup},
        {"cmd_dept", &Session::cmd_dept},
        {"cmd_department_2", &Session::cmd_department_2},
        {"cmd_department_3", &Session::cmd_department_3},
        {"cmd_loc", &Session::cmd_loc},
        {"cmd_location_2", &Session::cmd_location_2},
        {"cmd_location_3", &Session::cmd_location_3},
        {"cmd_ste0", &Session::cmd_ste0},
        {"cmd_ste1", &Session::cmd_ste1},
        {"cmd_ste2", &Session::cmd_ste2},
        {"cmd_ste3", &Session::cmd_ste3},
        {"cmd_ste4", &Session::cmd_ste4},
        {"cmd_ste5", &Session::cmd_ste5},
        {"cmd_ste6", &Session::cmd_ste6},
        {"cmd_ste7", &Session::cmd_ste7},
        {"cmd_ste8", &Session::cmd_ste8},
        {"cmd_steA", &Session::cmd_steA},
        {"cmd_steB", &Session::cmd_steB},
        {"cmd_ste_explain", &Session::cmd_ste_explain},
        {"cmd_disconnect", &Session::cmd_disconnect},
        {"cmd_clear", &Session::cmd_clear},
    };
    return buttons;
}

SessionOperation sessionOperation(const QString& name) {
    for (const SessionButton& button : sessionButtons())
        if (button.name == name)
            return button.operation;
    return nullptr;
}

} // namespace larkspur
