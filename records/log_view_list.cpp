#include "records/log_view_list.h"

namespace larkspur {

QLatin1StringView LogViewList::entry(qsizetype index) const {
    const qsizetype begin = index == 0 ? m_start : m_ends.at(index - 1);
    const qsizetype end = m_ends.at(index);
    return arena(begin, begin + entryLength(end - begin));
}

QLatin1StringView LogViewList::arena(qsizetype begin, qsizetype end) const {
    return QLatin1StringView(m_arena.constData() + begin, end - begin);
}

void LogViewList::appendBytes(QStringView text) {
    const qsizetype at = m_arena.size();
    m_arena.resize(at + text.size());
    char* out = m_arena.data() + at;
    for (QChar c : text)
        *out++ = c.unicode() <= 0xFF ? char(c.unicode()) : '?';
}

void LogViewList::append(QStringView entry) {
    appendBytes(entry);
    m_arena.append("\r\n", 2);
    m_ends.append(m_arena.size());
}

qsizetype LogViewList::appendLogged(QStringView text) {
    const qsizetype at = m_arena.size();
    appendBytes(text);
    m_ends.append(m_arena.size());
    return at;
}

void LogViewList::clear() {
    m_start = m_arena.size();
    m_ends.clear();
}

} // namespace larkspur
