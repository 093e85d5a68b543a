#include "link/log_files.h"

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
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        if (line.endsWith('\n'))
            line.chop(1);
        if (line.endsWith('\r'))
            line.chop(1);
        list.append(QString::fromLatin1(line));
    }
    return file.error() == QFileDevice::NoError;
}

} // namespace larkspur
