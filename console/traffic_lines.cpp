#include "console/traffic_lines.h"

namespace larkspur {

void TrafficLines::insertAtEnd(QStringView text, bool replaceLastCharacter) {
    if (replaceLastCharacter && !m_text.isEmpty()) {
        if (m_text.back() == '\r')
            m_lineEnds.removeLast();
        m_text.chop(1);
    }
    // Grown in place (resize reallocates, where appending another array copies the whole text
    // whenever it outgrows its room: a long stall at a million lines).
    const qsizetype start = m_text.size();
    m_text.resize(start + text.size());
    char* out = m_text.data() + start;
    for (qsizetype i = 0; i < text.size(); ++i) {
        out[i] = char(text[i].unicode());
        if (out[i] == '\r')
            m_lineEnds.append(start + i);
    }
}

void TrafficLines::clear() {
    m_text.clear();
    m_lineEnds.clear();
}

qsizetype TrafficLines::lineCount() const {
    const qsizetype openStart = m_lineEnds.isEmpty() ? 0 : m_lineEnds.last() + 1;
    qsizetype openLength = m_text.size() - openStart;
    if (openLength > 0 && m_text.at(openStart) == '\n')
        --openLength;
    return m_lineEnds.size() + (openLength > 0 ? 1 : 0);
}

QString TrafficLines::line(qsizetype index) const {
    if (index < 0 || index > m_lineEnds.size())
        return QString();
    qsizetype begin = index == 0 ? 0 : m_lineEnds.at(index - 1) + 1;
    const qsizetype end = index < m_lineEnds.size() ? m_lineEnds.at(index) : m_text.size();
    if (begin < end && m_text.at(begin) == '\n')
        ++begin;
    return QString::fromLatin1(m_text.constData() + begin, end - begin);
}

} // namespace larkspur
