#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

struct ScriptCheck;

// What larkspur-run --check prints for the script `path`: one row per command the runner
// reaches, then what the check found, then the verdict.
QString checkReportText(const QString& path, const ScriptCheck& check);

// The same as one JSON object, for other tools.
QByteArray checkReportJson(const QString& path, const ScriptCheck& check);

} // namespace larkspur
