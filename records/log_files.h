#pragma once

#include <QString>

namespace larkspur {

class LogViewList;

// A log file: one viewer entry a line, each ended by CR LF, 8-bit text. Both return false when
// the file could not be written or read; what was read before a failure stays in the list.
bool saveLogFile(const QString& path, const LogViewList& list);
bool appendLogFile(const QString& path, LogViewList& list);

} // namespace larkspur
