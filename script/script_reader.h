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

    // A line of the file that is not in the text, and why.
    struct LeftOut {
        enum class Reason { Comment, Blank, HoldsVmail, LastLine };
        int fileLine;
        Reason reason;
        QByteArray line; // kept for a line holding "VMAIL" and for the last line only
    };
    QList<LeftOut> leftOut;

    // The file's line number of the kept line holding the 1-based `position` of the text; 0 for
    // the ETX at its end.
    int fileLineAt(qsizetype position) const;

private:
    friend ScriptText readScript(const QByteArray& file);

    // Where the kept lines stop following each other in the file: from kept line `keptIndex` on,
    // they start again at `fileLine`.
    struct Resume {
        qsizetype keptIndex;
        int fileLine;
    };
    QList<Resume> m_resumes;
    // The last lookup, so a walk from the top to the end counts each line once.
    mutable qsizetype m_seenPosition = 0;
    mutable qsizetype m_seenLines = 0;
};

// Reads the bytes of a script file (8-bit text). Lines end in CR LF, CR or LF. Comments (";" in
// column 1), lines of blanks only and lines holding "VMAIL" are left out, and so is the file's
// last line: a recording ends with its last command, which therefore never plays.
ScriptText readScript(const QByteArray& file);

} // namespace larkspur
