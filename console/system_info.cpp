#include "console/system_info.h"

#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QThread>

namespace larkspur {

const QStringList& systemInfoTools() {
    static const QStringList tools = {QStringLiteral("hardinfo"),
                                      QStringLiteral("gnome-system-monitor"),
                                      QStringLiteral("kinfocenter")};
    return tools;
}

QString firstInstalledTool(const QStringList& tools) {
    for (const QString& tool : tools) {
        const QString path = QStandardPaths::findExecutable(tool);
        if (!path.isEmpty())
            return path;
    }
    return QString();
}

QString meminfoAmount(const QByteArray& meminfo, const QByteArray& key) {
    for (const QByteArray& line : meminfo.split('\n')) {
        if (!line.startsWith(key + ':'))
            continue;
        const QList<QByteArray> words = line.mid(key.size() + 1).simplified().split(' ');
        bool ok = false;
        const double kib = words.value(0).toDouble(&ok);
        if (!ok)
            return QString();
        return QStringLiteral("%1 GiB").arg(kib / (1024.0 * 1024.0), 0, 'f', 1);
    }
    return QString();
}

QString systemDetails() {
    QFile meminfo(QStringLiteral("/proc/meminfo"));
    const QByteArray memory = meminfo.open(QIODevice::ReadOnly) ? meminfo.readAll() : QByteArray();
    const auto orUnknown = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("unknown") : text;
    };
    return QStringLiteral("System: %1\n"
                          "Kernel: %2 %3\n"
                          "Architecture: %4\n"
                          "Host: %5\n"
                          "Processors: %6\n"
                          "Memory: %7 (%8 available)\n"
                          "Qt: %9")
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
             QSysInfo::currentCpuArchitecture(), QSysInfo::machineHostName())
        .arg(QThread::idealThreadCount())
        .arg(orUnknown(meminfoAmount(memory, "MemTotal")),
             orUnknown(meminfoAmount(memory, "MemAvailable")), QString::fromLatin1(qVersion()));
}

} // namespace larkspur
