#include "script/script_reader.h"

#include "link/frame.h"

#include <QStringList>

namespace larkspur {

namespace {
bool kept(const QString& line) {
    return !line.startsWith(QLatin1Char(';')) && !line.trimmed().isEmpty() &&
           !line.contains(u"VMAIL");
}
} // namespace

ScriptText readScript(const QByteArray& file) {
    const QStringList lines = splitLines(QString::fromLatin1(file));
    const QString first = lines.value(0);

    ScriptText script;
    if (first.contains(u"VMAIL")) {
        script.pmsMode = QStringLiteral("VMAIL");
        script.protocolType =
            first.contains(u"HYATT") ? QStringLiteral("HYATT") : QStringLiteral("HIS");
    } else {
        script.pmsMode = QStringLiteral("HOTEL");
        script.protocolType = QStringLiteral("HYATT");
    }
    for (qsizetype i = 0; i + 1 < lines.size(); ++i)
        if (kept(lines[i]))
            script.text += lines[i] + carriage_return();
    script.text += end_of_text();
    return script;
}

} // namespace larkspur
