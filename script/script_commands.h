#pragma once

#include "protocol/message_catalogue.h"
#include "transactions/press_steps.h"

#include <QList>
#include <QString>

#include <functional>

namespace larkspur {

class Session;

// One replayable command: the word (four characters in hotel scripts, the function code in
// voice-mail ones), the fields it copies into the input fields, and the button it presses.
struct ScriptCommand {
    QString word;
    QList<FieldColumn> copies;
    std::function<void(Session&)> press;
    // The steps that press takes for the fields it reads, without a session: the very rules the
    // transaction applies, for the script check.
    std::function<void(const PressInput&, PressSteps&)> steps;
    // The control it presses and the catalogue's name for what that sends, for reports.
    Control button;
    QString name;
};

// The command for `word`, or nullptr. Hotel words and voice-mail codes share one table; a code
// is one character and a word four, so they never meet.
const ScriptCommand* findScriptCommand(const QString& word);

} // namespace larkspur
