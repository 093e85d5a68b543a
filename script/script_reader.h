#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

// A script file turned into the text the interpreter walks: kept lines each with CR LF, then
// ETX. The first line decides the mode and protocol.
struct ScriptText {
    QString pmsMode;      // "HOTEL" or "VMAIL"
    QString protocolType; // "HYATT" or "HIS"
    QString text;
};

// Reads the bytes of a script file (8-bit text). Lines end in CR LF, CR or LF. Comments (";" in
// column 1), blank lines and lines holding "VMAIL" are left out, and so is the file's last line:
// a recording ends with its last command, which therefore never plays.
ScriptText readScript(const QByteArray& file);

} // namespace larkspur
