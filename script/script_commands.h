#pragma once

#include "transactions/fields.h"

#include <QList>
#include <QString>

#include <functional>

namespace larkspur {

class Session;

// Where a replayed command finds a field in its line: 1-based column and width.
struct FieldCopy {
    int column;
    int width;
    Field field;
};

// One replayable command: the word (four characters in hotel scripts, the function code in
// voice-mail ones), the fields it copies into the input fields, and the button it presses.
struct ScriptCommand {
    QString word;
    QList<FieldCopy> copies;
    std::function<void(Session&)> press;
};

// The command for `word`, or nullptr. Hotel words and voice-mail codes share one table; a code
// is one character and a word four, so they never meet.
const ScriptCommand* findScriptCommand(const QString& word);

} // namespace larkspur
