#include "console/report_saver.h"

#include "assembly/assembly.h"
#include "core/operator_interface.h"

namespace larkspur {

ReportSaver::ReportSaver(Assembly& console, QObject* parent)
    : QObject(parent), m_console(console), m_cases(console.session, console.engine),
      m_report(console.session, console.engine, console.trace, m_cases) {}

void ReportSaver::save() {
    OperatorInterface& op = m_console.session.operatorInterface();
    const QString path = op.chooseFileToSave(tr("Report pages (*.html *.htm)"));
    if (path.isEmpty())
        return;
    QString why;
    if (!m_report.write(path, QStringLiteral("larkspur"), {}, m_console.statistics, &why))
        op.notify(tr("Cannot write the report %1: %2").arg(path, why));
}

} // namespace larkspur
