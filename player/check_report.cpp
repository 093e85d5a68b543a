#include "player/check_report.h"

#include "protocol/readable_notation.h"
#include "script/script_check.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace larkspur {

namespace {

// "! 7:1   NAM1  name 6-26 "Jones...", room 27-31 "  101"  -> cmd_name_1 (add name)"; "!" marks
// a row with a warning, "X" the row where the run stops.
QString rowText(const CheckRow& row, int lineWidth) {
    QStringList fields;
    for (const CheckedField& f : row.fields)
        fields << f.describe();
    const QChar mark = row.stops ? u'X' : row.warned ? u'!' : u' ';
    return QStringLiteral("%1 %2:%3 %4  %5  -> %6\n")
        .arg(mark)
        .arg(row.line, lineWidth)
        .arg(row.column, -3)
        .arg(toReadable(row.command.toLatin1()), -4)
        .arg(fields.join(QStringLiteral(", ")), row.drives);
}

} // namespace

QString checkReportText(const QString& path, const ScriptCheck& check) {
    QString out = QStringLiteral("%1: %2 script, protocol %3, commands reached: %4\n")
                      .arg(path, pmsModeName(check.pmsMode), protocolName(check.protocolType))
                      .arg(check.rows.size());
    int lastLine = 1;
    for (const CheckRow& row : check.rows)
        lastLine = qMax(lastLine, row.line);
    const int lineWidth = int(QString::number(lastLine).size());
    for (const CheckRow& row : check.rows)
        out += rowText(row, lineWidth);
    for (const CheckFinding& finding : check.findings)
        out +=
            QStringLiteral("%1: %2: %3\n").arg(finding.lines(), finding.levelName(), finding.text);
    return out + check.verdictText() + u'\n';
}

QByteArray checkReportJson(const QString& path, const ScriptCheck& check) {
    QJsonArray commands;
    for (const CheckRow& row : check.rows) {
        QJsonArray fields;
        for (const CheckedField& f : row.fields)
            fields.append(QJsonObject{{"label", f.label},
                                      {"control", f.control},
                                      {"line", f.line},
                                      {"firstColumn", f.firstColumn},
                                      {"lastColumn", f.lastColumn},
                                      {"text", f.text}});
        commands.append(QJsonObject{{"line", row.line},
                                    {"column", row.column},
                                    {"command", row.command},
                                    {"fields", fields},
                                    {"drives", row.drives},
                                    {"plays", row.plays},
                                    {"warned", row.warned},
                                    {"stops", row.stops}});
    }
    QJsonArray findings;
    for (const CheckFinding& finding : check.findings)
        findings.append(QJsonObject{{"level", finding.levelName()},
                                    {"kind", finding.kind},
                                    {"line", finding.line},
                                    {"lastLine", finding.lastLine},
                                    {"text", finding.text}});
    const QJsonObject report{{"script", path},
                             {"mode", pmsModeName(check.pmsMode)},
                             {"protocol", protocolName(check.protocolType)},
                             {"verdict", check.verdictName()},
                             {"commands", commands},
                             {"findings", findings}};
    return QJsonDocument(report).toJson(QJsonDocument::Indented);
}

} // namespace larkspur
