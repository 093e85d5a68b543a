#pragma once

#include "core/pms_mode.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace larkspur {

class ScriptText;

// A field of a checked command: what it is, where the runner reads it and what it holds there.
struct CheckedField {
    QString label;   // "room", "name", "mailbox", "member 2", "item", "digit", "past member 4"
    QString control; // the input field it fills, "txt_suite_1"; empty for what fills none
    int line = 0;    // the file line it starts on (0: past the last line)
    int firstColumn = 0;
    int lastColumn = 0;
    QString text; // as read, one character a byte (what lies past member 4: its first 64)

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
    // A transaction or a linked suite, foreseen by the transaction's own rules: the messages it
    // sends if the PBX takes each (the frame's text; in voice mail the whole frame), and the lines
    // it logs (voice mail: the notices it gives) for the fields it refuses.
    QStringList sends;
    QStringList refusals;
    // It refuses nothing and its first message is the line as written. Whatever drives no message
    // (a wait, an unknown command) is as written.
    bool asWritten = true;
};

// Something the check tells about the script.
struct CheckFinding {
    enum class Level { Note, Warning, Stop };
    Level level = Level::Note;
    QString kind;        // "last-line", "misfit", "refused", "sends-otherwise", "nul", ...
    int line = 0;        // the file line it is about (0: past the last line)
    int lastLine = 0;    // the last of a run of lines it is about (notes on comments, blanks)
    int firstColumn = 0; // the columns of `line` it is about, when it is about some
    int lastColumn = 0;
    QString text;

    QString levelName() const; // "note", "warning", "stop"
    QString lines() const;     // "line 7", "lines 1-3"
};

enum class CheckVerdict { Clean, Warnings, Stops };

// The findings counted as they come, and the verdict they make.
struct CheckTally {
    qsizetype warnings = 0;
    bool stops = false;

    void add(const CheckFinding& finding);
    CheckVerdict verdict() const;
    QString verdictName() const; // "clean", "warnings", "stops"
    // "clean: every command plays as written", "2 warning(s)", ...
    QString verdictText() const;
};

// What the check must know of the run that will play the script.
struct CheckOptions {
    // Error Mode (the window's check box, larkspur-run --error-mode): fields go out as read.
    bool errorMode = false;
};

// Takes the check as the walk makes it.
class CheckSink {
public:
    virtual ~CheckSink() = default;
    // Each command the runner reaches, in the order it reaches them.
    virtual void row(const CheckRow& row) { Q_UNUSED(row); }
    // What the check found, in the order of the lines it is about (past the last line: last).
    virtual void finding(const CheckFinding& finding) { Q_UNUSED(finding); }
};

// A script as the runner will read it: every command it reaches, and what is wrong.
struct ScriptCheck {
    using Verdict = CheckVerdict;

    PmsMode pmsMode = PmsMode::Hotel;
    Protocol protocolType = Protocol::Hyatt;
    QList<CheckRow> rows;
    QList<CheckFinding> findings; // by line
    Verdict verdict() const;
    QString verdictName() const;
    QString verdictText() const;
};

// Walks the script as the runner does, without playing it, telling `sink` each row and finding
// as it goes; it holds no more than the command at hand (and the commands read from mid-line
// after a misfit, until one stands in its place again).
void checkScript(const ScriptText& script, const CheckOptions& options, CheckSink& sink);

// The same, kept whole.
ScriptCheck checkScript(const ScriptText& script, const CheckOptions& options = {});

} // namespace larkspur
