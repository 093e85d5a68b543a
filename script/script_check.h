#pragma once

#include "core/pms_mode.h"

#include <QList>
#include <QString>

namespace larkspur {

class ScriptText;

// A field of a checked command: what it is, where the runner reads it and what it holds there.
struct CheckedField {
    QString label;   // "room", "name", "mailbox", "member 2", "item", "digit"
    QString control; // the input field it fills, "txt_suite_1"; empty for item and digit
    int line = 0;    // the file line it starts on (0: past the last line)
    int firstColumn = 0;
    int lastColumn = 0;
    QString text; // as read, one character a byte

    // "6-10", "27", or "past the end".
    QString columns() const;
    // As the reports show it: room 6-10 "  101", control characters in readable notation.
    QString describe() const;
};

// One command the runner will reach, in the order it reaches them.
struct CheckRow {
    int line = 0;   // the file line the command is read from (0: past the last line)
    int column = 0; // the column of its word (voice mail: of its code)
    QString command;
    QList<CheckedField> fields;
    QString drives;     // the button it presses, the wait it runs, or what becomes of it
    bool plays = false; // the runner fills its fields and presses its button or waits
    bool warned = false;
    bool stops = false;
};

// Something the check tells about the script.
struct CheckFinding {
    enum class Level { Note, Warning, Stop };
    Level level = Level::Note;
    QString kind;     // "last-line", "misfit", "passed-over", "alt-notice", ...
    int line = 0;     // the file line it is about
    int lastLine = 0; // the last of a run of lines it is about (notes on comments, blanks)
    QString text;

    QString levelName() const; // "note", "warning", "stop"
    QString lines() const;     // "line 7", "lines 1-3"
};

// A script as the runner will read it: every command it reaches, and what is wrong.
struct ScriptCheck {
    enum class Verdict { Clean, Warnings, Stops };

    PmsMode pmsMode = PmsMode::Hotel;
    Protocol protocolType = Protocol::Hyatt;
    QList<CheckRow> rows;
    QList<CheckFinding> findings; // by line
    Verdict verdict() const;
    QString verdictName() const; // "clean", "warnings", "stops"
    // "clean: every command plays as written", "2 warning(s)", ...
    QString verdictText() const;
};

// Walks the script as the runner does, without playing it.
ScriptCheck checkScript(const ScriptText& script);

} // namespace larkspur
