#include "script/script_commands.h"

#include "transactions/session.h"

namespace larkspur {

namespace {
using F = Field;

std::function<void(Session&)> press(void (Session::*operation)()) {
    return [operation](Session& s) { (s.*operation)(); };
}

QList<ScriptCommand> buildTable() {
    // Hotel columns follow the message bodies the transactions record; a voice-mail line is
    // the frame, read from after its code: mailbox (6), then the operation's second field.
    const QList<FieldCopy> room = {{6, 5, F::txt_suite_1}};
    const QList<FieldCopy> name = {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}};
    const QList<FieldCopy> department = {{6, 10, F::txt_department}, {16, 5, F::txt_suite_1}};
    const QList<FieldCopy> location = {{6, 10, F::txt_location}, {16, 5, F::txt_suite_1}};
    const QList<FieldCopy> wakeup = {{4, 4, F::txt_time}, {8, 5, F::txt_suite_1}};
    const QList<FieldCopy> mailbox = {{1, 6, F::txt_ls_pilot}};
    const auto mailboxAnd = [](int width, Field field) {
        return QList<FieldCopy>{{1, 6, F::txt_ls_pilot}, {7, width, field}};
    };

    QList<ScriptCommand> table = {
        {"2", mailbox, press(&Session::cmd_chk_in)},
        {"CHK1", room, press(&Session::cmd_chk_in)},
        {"3", mailbox, press(&Session::cmd_chk_out)},
        {"CHK0", room, press(&Session::cmd_chk_out)},
        {"6", mailbox, press(&Session::cmd_name_1)},
        {"NAM1", name, press(&Session::cmd_name_1)},
        {"7", mailboxAnd(6, F::txt_suite_2), press(&Session::Command6)},
        {"NAM2", name, press(&Session::cmd_replace_name)},
        {"8", mailboxAnd(2, F::txt_suite_4), press(&Session::cmd_department_3)},
        {"NAM3", name, press(&Session::Command6)},
        {"9", mailboxAnd(2, F::txt_department), press(&Session::cmd_replace_name)},
        {"A", mailboxAnd(6, F::txt_suite_1), press(&Session::cmd_xfer_name)},
        {"B", mailboxAnd(6, F::txt_suite_1), press(&Session::cmd_dept)},
        {"D", mailboxAnd(6, F::txt_suite_3), press(&Session::cmd_department_2)},
        {"NAM4",
         {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}, {32, 5, F::txt_suite_2}},
         press(&Session::cmd_xfer_name)},
        {"DPT1", department, press(&Session::cmd_dept)},
        {"DPT2", department, press(&Session::cmd_department_2)},
        {"DPT3", department, press(&Session::cmd_department_3)},
        {"LOC1", location, press(&Session::cmd_loc)},
        {"LOC2", location, press(&Session::cmd_location_2)},
        {"LOC3", location, press(&Session::cmd_location_3)},
        {"MW 0", room, press(&Session::cmd_message_waiting_0)},
        {"MW 1", room, press(&Session::cmd_msg_wait)},
        {"WKP0", wakeup, press(&Session::cmd_wakeup)},
        {"WKP1", wakeup, press(&Session::cmd_wakeup)},
        {"WKP2", wakeup, press(&Session::cmd_wakeup)},
        {"LMT1", {{6, 5, F::txt_suite_1}, {12, 5, F::txt_credit}}, press(&Session::cmd_set_credit)},
    };
    for (const char level : QByteArray("012345")) {
        const QString digit(QLatin1Char{level});
        table.append(
            {"RST" + digit, room, [digit](Session& s) { s.send_station_restriction(digit); }});
    }
    return table;
}
} // namespace

const ScriptCommand* findScriptCommand(const QString& word) {
    static const QList<ScriptCommand> table = buildTable();
    for (const ScriptCommand& command : table)
        if (command.word == word)
            return &command;
    return nullptr;
}

} // namespace larkspur
