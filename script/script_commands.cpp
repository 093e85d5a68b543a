#include "script/script_commands.h"

#include "transactions/session.h"

namespace larkspur {

namespace {

std::function<void(Session&)> press(Control button) {
    return [button](Session& s) { s.press(button); };
}

// Every line the runner replays, from the message catalogue. A voice-mail line is the frame,
// read from after its code: the mailbox, then the operation's second field. A restriction line
// sends the level its word ends in.
QList<ScriptCommand> buildTable() {
    QList<ScriptCommand> table;
    for (const VmailMessage& message : vmailMessages()) {
        if (!message.button)
            continue;
        QList<FieldColumn> copies = {{1, mailboxWidth, Field::txt_ls_pilot}};
        if (message.extra)
            copies.append({mailboxWidth + 1, message.extraWidth, *message.extra});
        table.append({message.code, copies, press(*message.button),
                      [code = message.code](const PressInput& input, PressSteps& steps) {
                          pressVmail(code, input, steps);
                      },
                      *message.button, message.name});
    }
    for (const HotelMessage& message : hotelMessages()) {
        for (const QString& word : message.scriptWords) {
            const auto stepsOf = [](const QString& code) {
                return [code](const PressInput& input, PressSteps& steps) {
                    pressHotel(code, input, steps);
                };
            };
            if (message.code == u"RST") {
                const QString level = word.right(1);
                table.append({word, message.columns,
                              [level](Session& s) { s.send_station_restriction(level); },
                              stepsOf(message.code + level), message.button,
                              message.name + QStringLiteral(" level ") + level});
            } else {
                table.append({word, message.columns, press(message.button), stepsOf(message.code),
                              message.button, message.name});
            }
        }
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
