#include "records/log_view_list.h"

namespace larkspur {

QStringView LogViewList::entry(qsizetype index) const {
    const qsizetype begin = index == 0 ? 0 : m_ends.at(index - 1);
    return QStringView(m_text).mid(begin, m_ends.at(index) - begin);
}

void LogViewList::append(QStringView entry) {
    m_text.append(entry);
    m_ends.append(m_text.size());
}

void LogViewList::clear() {
    m_text.clear();
    m_ends.clear();
}

} // namespace larkspur
