#include "player/check_report.h"

#include "protocol/readable_notation.h"
#include "script/script_check.h"
#include "script/script_reader.h"

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

QString findingText(const CheckFinding& finding) {
    return QStringLiteral("%1: %2: %3\n").arg(finding.lines(), finding.levelName(), finding.text);
}

// A sink of the walk as one function each for rows and findings.
class Each : public CheckSink {
public:
    std::function<void(const CheckRow&)> onRow = [](const CheckRow&) {};
    std::function<void(const CheckFinding&)> onFinding = [](const CheckFinding&) {};
    void row(const CheckRow& row) override { onRow(row); }
    void finding(const CheckFinding& finding) override { onFinding(finding); }
};

QJsonObject rowObject(const CheckRow& row) {
    QJsonArray fields;
    for (const CheckedField& f : row.fields)
        fields.append(QJsonObject{{"label", f.label},
                                  {"control", f.control},
                                  {"line", f.line},
                                  {"firstColumn", f.firstColumn},
                                  {"lastColumn", f.lastColumn},
                                  {"text", f.text}});
    return QJsonObject{{"line", row.line},
                       {"column", row.column},
                       {"command", row.command},
                       {"fields", fields},
                       {"drives", row.drives},
                       {"sends", QJsonArray::fromStringList(row.sends)},
                       {"refusals", QJsonArray::fromStringList(row.refusals)},
                       {"plays", row.plays},
                       {"warned", row.warned},
                       {"stops", row.stops}};
}

QJsonObject findingObject(const CheckFinding& finding) {
    return QJsonObject{{"level", finding.levelName()},
                       {"kind", finding.kind},
                       {"line", finding.line},
                       {"lastLine", finding.lastLine},
                       {"firstColumn", finding.firstColumn},
                       {"lastColumn", finding.lastColumn},
                       {"text", finding.text}};
}

// An element of a top-level array, indented as QJsonDocument indents the whole.
QByteArray element(const QJsonObject& object) {
    QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Indented);
    json.chop(1); // its last line end
    json.replace("\n", "\n        ");
    return "        " + json;
}

// One JSON string value.
QByteArray jsonString(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

// Writes the elements of one array member, separated as JSON wants.
class ArrayWriter {
public:
    ArrayWriter(const ReportOutput& out, const char* name) : m_out(out) {
        m_out(QByteArray("    \"") + name + "\": [");
    }
    void add(const QJsonObject& object) {
        m_out((m_empty ? "\n" : ",\n") + element(object));
        m_empty = false;
    }
    void close() { m_out("\n    ],\n"); }

private:
    const ReportOutput& m_out;
    bool m_empty = true;
};

} // namespace

CheckVerdict writeCheckReportText(const ReportOutput& out, const QString& path,
                                  const ScriptText& script, const CheckOptions& options) {
    qsizetype rows = 0;
    int lastLine = 1;
    Each count;
    count.onRow = [&](const CheckRow& row) {
        ++rows;
        lastLine = qMax(lastLine, row.line);
    };
    checkScript(script, options, count);
    out(QStringLiteral("%1: %2 script, protocol %3, commands reached: %4\n")
            .arg(path, pmsModeName(script.pmsMode), protocolName(script.protocolType))
            .arg(rows)
            .toLatin1());

    const int lineWidth = int(QString::number(lastLine).size());
    Each printRows;
    printRows.onRow = [&](const CheckRow& row) { out(rowText(row, lineWidth).toLatin1()); };
    checkScript(script, options, printRows);

    CheckTally tally;
    Each printFindings;
    printFindings.onFinding = [&](const CheckFinding& finding) {
        tally.add(finding);
        out(findingText(finding).toLatin1());
    };
    checkScript(script, options, printFindings);
    out((tally.verdictText() + u'\n').toLatin1());
    return tally.verdict();
}

CheckVerdict writeCheckReportJson(const ReportOutput& out, const QString& path,
                                  const ScriptText& script, const CheckOptions& options) {
    // The members in the order QJsonDocument writes them: by name.
    out("{\n");
    ArrayWriter commands(out, "commands");
    Each rows;
    rows.onRow = [&](const CheckRow& row) { commands.add(rowObject(row)); };
    checkScript(script, options, rows);
    commands.close();

    ArrayWriter findings(out, "findings");
    CheckTally tally;
    Each found;
    found.onFinding = [&](const CheckFinding& finding) {
        tally.add(finding);
        findings.add(findingObject(finding));
    };
    checkScript(script, options, found);
    findings.close();

    out("    \"mode\": " + jsonString(pmsModeName(script.pmsMode)) + ",\n" +
        "    \"protocol\": " + jsonString(protocolName(script.protocolType)) + ",\n" +
        "    \"script\": " + jsonString(path) + ",\n" +
        "    \"verdict\": " + jsonString(tally.verdictName()) + "\n}\n");
    return tally.verdict();
}

} // namespace larkspur
