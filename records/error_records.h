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
    void resetErrors() {
        m_errorCount = 0;
        m_countedSinceReset = 0;
    }
    // The operator starts a new error file.
    void clearReport() { m_errorReport.clear(); }
    // Whether the report text keeps the records; a player that streams each one to its file
    // as it comes keeps none, so a week of failures costs no memory.
    void keepReport(bool keep) { m_keepReport = keep; }

    qint16 errorCount() const { return m_errorCount; }
    // The same count without the 16-bit wrap, so a week of failures never reads as none.
    qint64 countedSinceReset() const { return m_countedSinceReset; }
    const QString& errorReport() const { return m_errorReport; }

Q_SIGNALS:
    void errorRecorded(const QString& record);

private:
    qint16 m_errorCount = 0;
    qint64 m_countedSinceReset = 0;
    bool m_keepReport = true;
    QString m_errorReport;
};

} // namespace larkspur
