#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

class LogViewList;

// A log file: one viewer entry a line, each ended by CR LF, 8-bit text. Both return false when
// the file could not be written or read; what was read before a failure stays in the list.
bool saveLogFile(const QString& path, const LogViewList& list, QString* error = nullptr);
bool appendLogFile(const QString& path, LogViewList& list);

// The line a log file holds for a text the traffic log logged: its viewer entry and CR LF, for
// a log file written as the lines come.
QByteArray logFileLine(QStringView loggedText);

} // namespace larkspur
