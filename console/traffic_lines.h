#pragma once

#include "console/line_source.h"

#include <QByteArray>
#include <QList>

namespace larkspur {

// The text of the traffic display, one byte a character (the log shows only printable ASCII and
// line ends), split into lines at each CR. A text may end inside a line; the next one goes on
// with it.
class TrafficLines : public LineSource {
public:
    // Appends `text`; with `replaceLastCharacter` it first takes away the last character shown.
    // That is the LF of a line end when the last text ended a line, which leaves its CR ending
    // the line, so the line stays as it was.
    void insertAtEnd(QStringView text, bool replaceLastCharacter);
    void clear();

    qsizetype lineCount() const override;
    QString line(qsizetype index) const override;

private:
    QByteArray m_text;
    // Index of each CR in m_text: line i ends there.
    QList<qsizetype> m_lineEnds;
};

} // namespace larkspur
