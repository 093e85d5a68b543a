#pragma once

#include "core/pms_mode.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace larkspur {

// A script file turned into the text the interpreter walks: kept lines each with CR LF, then
// ETX, one byte a character. The first line decides the mode and protocol.
class ScriptText {
public:
    PmsMode pmsMode = PmsMode::Hotel;
    Protocol protocolType = Protocol::Hyatt;
    QByteArray text;

    // Lines of the file that are not in the text, and why; a run of comment lines or of blank
    // lines is one entry. Twelve bytes each, for a script may hold a comment before every line.
    struct LeftOut {
        enum class Reason : quint8 { Comment, Blank, HoldsVmail, LastLine };
        int fileLine;
        int lastLine : 29; // the last line of the run; fileLine for a single line
        Reason reason : 3;
        int keptBefore; // how many lines of the file before it are kept
    };
    static_assert(sizeof(LeftOut) <= 12);
    QList<LeftOut> leftOut;
    // The text of a left-out line holding "VMAIL" or of the last line; empty for any other.
    QByteArray leftOutLine(int fileLine) const;

    // How the file's bytes are encoded, as its first bytes tell. The runner reads one byte a
    // character whatever they are; the check names anything else.
    enum class Encoding {
        Bytes,        // 8-bit text, as scripts are
        Utf8WithMark, // starts with the UTF-8 byte order mark EF BB BF
        Utf16LE,      // UTF-16, low byte first: FF FE, or every other byte NUL from the second
        Utf16BE,      // UTF-16, high byte first: FE FF, or every other byte NUL from the first
    };
    Encoding encoding = Encoding::Bytes;
    bool utf16Marked = false; // UTF-16 that starts with its byte order mark

    // A line holding bytes an editor may not show: NUL bytes, or a line end of another kind
    // than the file's own (a lone LF or CR in a file whose lines end in CR LF), which the runner
    // takes as a line end all the same.
    struct Oddity {
        enum class Kind { Nul, LoneLf, LoneCr };
        Kind kind;
        int fileLine;
        int column; // Nul: the first; LoneLf, LoneCr: where the line end stands
        int count;  // Nul: how many the line holds
    };
    // The first maxOddities of them, by line; oddityCount counts them all.
    QList<Oddity> oddities;
    qsizetype oddityCount = 0;
    static constexpr qsizetype maxOddities = 100;

    // The file's line number of the kept line holding the 1-based `position` of the text; 0 for
    // the ETX at its end.
    int fileLineAt(qsizetype position) const;
    // The file's line number of the kept line `keptIndex` (0 for the first kept line).
    int fileLineOfKept(qsizetype keptIndex) const;

private:
    friend ScriptText readScript(const QByteArray& file);

    // The lines kept for leftOutLine, by line: where each stands in one pool of their text.
    struct KeptLine {
        int fileLine;
        int start; // a script holds at most maxScriptBytes
        int size;
    };
    QList<KeptLine> m_leftOutLines;
    QByteArray m_leftOutText;
    // The last lookup, so a walk from the top to the end counts each line once.
    mutable qsizetype m_seenPosition = 0;
    mutable qsizetype m_seenLines = 0;
};

// Reads the bytes of a script file (8-bit text). Lines end in CR LF, CR or LF. Comments (";" in
// column 1), lines of blanks only and lines holding "VMAIL" are left out, and so is the file's
// last line: a recording ends with its last command, which therefore never plays.
ScriptText readScript(const QByteArray& file);

} // namespace larkspur
