#pragma once

#include "core/streamed_file.h"

#include <QList>
#include <QString>
#include <QTemporaryFile>

#include <memory>

namespace larkspur {

// One test case per played script command, written as JUnit XML that CI servers' schema
// accepts. Cases go to a spool file as they close, so a week-long run holds only their count;
// the report itself is written at the end.
class JunitReport {
public:
    struct Case {
        QString name;
        double seconds = 0;
        QString failure; // empty when the command did not fail
        QString output;  // the log lines of the command
        int line = 0;    // where the command stands in the script file, when known
    };

    // The spool goes in `folder` (the report's own, so it needs no room elsewhere). False with
    // the reason in error().
    bool open(const QString& folder);
    void add(const Case& c);
    // A name/value pair of the whole run (the run statistics).
    void addProperty(const QString& name, const QString& value) {
        m_properties.append({name, value});
    }
    // Writes the report for the script `suiteName`; false with the reason in error() when it
    // could not be written whole.
    bool write(const QString& path, const QString& suiteName);

    qsizetype tests() const { return m_tests; }
    qsizetype failures() const { return m_failures; }
    const QString& error() const { return m_error; }

    // The name a case is shown by: its number in the run, and its script line when known.
    static QString caseName(qsizetype number, const Case& c);

private:
    std::unique_ptr<QTemporaryFile> m_spool;
    qsizetype m_tests = 0;
    qsizetype m_failures = 0;
    double m_seconds = 0;
    QList<std::pair<QString, QString>> m_properties;
    QString m_error;
};

} // namespace larkspur
