#pragma once

#include <QObject>
#include <QString>

namespace larkspur {

// What went wrong during a run: the text of the error report and the count of the errors that
// count (some failures are reported without counting).
class ErrorRecords : public QObject {
    Q_OBJECT
public:
    // Appends `record` to the report and, when it `counts`, adds one error.
    void recordError(const QString& record, bool counts);
    // A new run or a new recording starts from no errors; the report is kept.
    void resetErrors() { m_errorCount = 0; }
    // The operator starts a new error file.
    void clearReport() { m_errorReport.clear(); }

    qint16 errorCount() const { return m_errorCount; }
    const QString& errorReport() const { return m_errorReport; }

Q_SIGNALS:
    void errorRecorded(const QString& record);

private:
    qint16 m_errorCount = 0;
    QString m_errorReport;
};

} // namespace larkspur
