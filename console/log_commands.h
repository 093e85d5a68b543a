#pragma once

#include <QString>

namespace larkspur {

class Session;

// The open and save dialogs of the log buttons offer log files only.
inline const QString logFileFilter = QStringLiteral("PMS Log File (*.log)");

// The log buttons' work on the viewer list. A cancelled dialog or a file that cannot be read
// just ends the command, with no box and nothing logged; a log file that could not be written
// is said, for the status bar, so the operator never takes a missing file for a saved one. Open
// and Save do nothing while a transaction waits for its acknowledgement.

// "Save log file": the viewer list into a file the operator chooses. Returns what went wrong,
// or an empty text.
QString cmd_save_log(Session& session);
// "Open log file": appends a chosen file's lines to the viewer list; true when the file was
// read, and the viewer is then to be shown.
bool cmd_open_logfile(Session& session);
// "Start new log file": empties the error report and the viewer list.
void cmd_new_error_file(Session& session);

} // namespace larkspur
