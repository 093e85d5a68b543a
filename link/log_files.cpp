#include "link/log_files.h"

#include "link/frame.h"
#include "link/log_view_list.h"

#include <QFile>
#include <QSaveFile>

namespace larkspur {

bool saveLogFile(const QString& path, const LogViewList& list) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (qsizetype i = 0; i < list.size(); ++i) {
        file.write(list.entry(i).toLatin1());
        file.write("\r\n", 2);
    }
    return file.commit();
}

bool appendLogFile(const QString& path, LogViewList& list) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return false;
    for (const QString& line : splitLines(QString::fromLatin1(bytes)))
        list.append(line);
    return true;
}

} // namespace larkspur
