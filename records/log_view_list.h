#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace larkspur {

// The entries of the log viewer, kept append-only in one buffer so a million lines cost little
// more than their text.
class LogViewList {
public:
    qsizetype size() const { return m_ends.size(); }
    QStringView entry(qsizetype index) const;
    void append(QStringView entry);
    void clear();

private:
    QString m_text;
    QList<qsizetype> m_ends;
};

} // namespace larkspur
