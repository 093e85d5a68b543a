#pragma once

#include "core/field.h"
#include "script/expectation_waits.h"

#include <QList>
#include <QString>

namespace larkspur {

class ScriptText;
struct ExpectationItem;
struct ScriptCommand;

// One field as the runner reads it from the script text: the input field it fills, where it
// stands (1-based position in the text) and what it holds.
struct ReadField {
    Field field;
    qsizetype position;
    int width;
    QString text;
};

// One command as the runner reads it, without playing it: its word, its fields, what it drives
// and where the next command starts. The runner and the script check both walk these.
struct ScriptStep {
    enum class Kind {
        Transaction,  // a word or code of the catalogue: fields copied, button pressed
        LinkedSuite,  // STE0 .. STEB: pilot and members up to the line's end
        Expectation,  // WAIT or NTFY with an item the runner knows
        PassedOver,   // WAIT or NTFY with an item it does not know: nothing runs
        End,          // the ETX after the last line
        Unrecognized, // the run stops here
    };
    Kind kind = Kind::Unrecognized;
    qsizetype start = 0;     // where the word (voice mail: the code) stands
    qsizetype lineStart = 0; // where the line reported for it starts
    QString word;
    QString line; // the line as reported while it plays: up to its CR LF (voice mail: its "~")
    const ScriptCommand* command = nullptr; // Transaction
    QList<ReadField> fields;                // Transaction, LinkedSuite; Expectation: the room
    const ExpectationItem* expectation = nullptr;
    WaitKind waitKind = WaitKind::Plain;
    QString digit;
    // Where the next command starts; 0 when the run cannot go on after this one (a voice-mail
    // line without a "~" after it).
    qsizetype next = 0;
    // Unrecognized, or a step with no next: what the "Command: " notice names (in the readable
    // notation), and why.
    QString stopCommand;
    QString stopReason;
};

// Where the first command starts: voice-mail lines begin with their framing character.
qsizetype firstCommandPosition(const ScriptText& script);

// The command at `position` (1-based) of the script text.
ScriptStep readStep(const ScriptText& script, qsizetype position);

// How many commands a run of the script plays, once through.
qsizetype commandCount(const ScriptText& script);

} // namespace larkspur
