#pragma once

#include <QString>

#include <functional>

class QIODevice;

namespace larkspur {

// Writes a whole file through `write`: a regular file, or one that does not exist yet, is
// replaced only once everything is written, so a failed write leaves the old one as it was;
// anything else (a device such as /dev/null, a FIFO) is written directly, never replaced.
// False with the reason in `error` when it could not be written.
bool writeWholeFile(const QString& path, const std::function<bool(QIODevice&)>& write,
                    QString* error = nullptr);

// Why `path` cannot be written, checked before anything is done (a missing folder, a folder in
// its place, no permission); empty when it can.
QString unwritableReason(const QString& path);

} // namespace larkspur
