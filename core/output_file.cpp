#include "core/output_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

namespace larkspur {

bool writeWholeFile(const QString& path, const std::function<bool(QIODevice&)>& write,
                    QString* error) {
    const QFileInfo info(path);
    const auto failed = [error](const QFileDevice& file) {
        if (error)
            *error = file.errorString();
        return false;
    };
    if (info.exists() && !info.isFile()) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || !write(file) || !file.flush())
            return failed(file);
        return true;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !write(file) || !file.commit())
        return failed(file);
    return true;
}

QString unwritableReason(const QString& path) {
    if (path.isEmpty())
        return QStringLiteral("no file named");
    const QFileInfo info(path);
    if (info.isDir())
        return QStringLiteral("it is a folder");
    if (info.exists())
        return ::access(QFile::encodeName(path).constData(), W_OK) == 0
                   ? QString()
                   : QStringLiteral("it may not be written");
    const QFileInfo folder(info.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("the folder %1 does not exist").arg(folder.filePath());
    if (::access(QFile::encodeName(folder.filePath()).constData(), W_OK | X_OK) != 0)
        return QStringLiteral("the folder %1 may not be written").arg(folder.filePath());
    return QString();
}

} // namespace larkspur
