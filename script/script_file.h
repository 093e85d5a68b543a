#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

// The most a script may hold; a larger one is refused rather than read into memory.
constexpr qint64 maxScriptBytes = 64LL * 1024 * 1024;

// A script file read once, whatever it is: a regular file, a pipe (a process substitution) or a
// FIFO. Anything else (a device, a directory) is refused before a byte is read.
struct ScriptFile {
    enum class Status { Read, Refused, Interrupted };
    Status status = Status::Refused;
    QByteArray bytes;
    QString error; // why it was refused: "No such file or directory", "it is a directory"
};

// Reads `path`. A blocking open or read ends as Interrupted when SIGINT or SIGTERM arrives
// meanwhile (within InterruptibleCalls).
ScriptFile readScriptFile(const QString& path);

} // namespace larkspur
