#include "records/log_files.h"

#include "protocol/frame.h"
#include "records/log_view_list.h"

#include "core/output_file.h"

#include <QFile>

namespace larkspur {

bool saveLogFile(const QString& path, const LogViewList& list, QString* error) {
    return writeWholeFile(
        path,
        [&list](QIODevice& file) {
            for (qsizetype i = 0; i < list.size(); ++i) {
                const QLatin1StringView entry = list.entry(i);
                if (file.write(entry.data(), entry.size()) < 0 || file.write("\r\n", 2) < 0)
                    return false;
            }
            return true;
        },
        error);
}

QByteArray logFileLine(QStringView loggedText) {
    QByteArray line = loggedText.first(LogViewList::entryLength(loggedText.size())).toLatin1();
    return line.append("\r\n", 2);
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
