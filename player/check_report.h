#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace larkspur {

class ScriptText;
struct CheckOptions;
enum class CheckVerdict;

// Where a report goes, piece by piece.
using ReportOutput = std::function<void(const QByteArray&)>;

// What larkspur-run --check prints for the script `path`: a head line, one row per command the
// runner reaches, then what the check found, then the verdict. It is written as the check walks
// the script, which it walks three times (to count the rows, for the rows, for the findings), so
// that no more than the command at hand is held however long the script. Returns the verdict.
CheckVerdict writeCheckReportText(const ReportOutput& out, const QString& path,
                                  const ScriptText& script, const CheckOptions& options);

// The same as one JSON object, for other tools, walking the script twice.
CheckVerdict writeCheckReportJson(const ReportOutput& out, const QString& path,
                                  const ScriptText& script, const CheckOptions& options);

} // namespace larkspur
