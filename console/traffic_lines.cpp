#include "console/traffic_lines.h"

namespace larkspur {

void TrafficLines::insertAtEnd(QStringView text, bool replaceLastCharacter) {
    if (replaceLastCharacter && !m_text.isEmpty()) {
        if (m_text.back() == '\r')
            m_lineEnds.removeLast();
        m_text.chop(1);
    }
    const qsizetype start = m_text.size();
    m_text += text.toLatin1();
    for (qsizetype i = start; i < m_text.size(); ++i) {
        if (m_text.at(i) == '\r')
            m_lineEnds.append(i);
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
