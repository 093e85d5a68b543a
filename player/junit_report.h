#pragma once

#include <QList>
#include <QString>

class QIODevice;

namespace larkspur {

// One test case per played script command, written as JUnit XML for CI.
class JunitReport {
public:
    struct Case {
        QString name;
        double seconds = 0;
        QString failure; // empty when the command did not fail
        QString output;  // the log lines of the command
        int line = 0;    // where the command stands in the script file, when known
    };

    void add(Case c) { m_cases.append(std::move(c)); }
    // A name/value pair of the whole run (the run statistics).
    void addProperty(const QString& name, const QString& value) {
        m_properties.append({name, value});
    }
    const QList<Case>& cases() const { return m_cases; }

    // Writes the report for the script `suiteName`; false when the file could not be written.
    bool write(const QString& path, const QString& suiteName) const;

private:
    bool writeXml(QIODevice& file, const QString& suiteName) const;

    QList<Case> m_cases;
    QList<std::pair<QString, QString>> m_properties;
};

} // namespace larkspur
