#include "console/line_list_model.h"

#include "console/line_source.h"

namespace larkspur {

LineListModel::LineListModel(const LineSource& source, QObject* parent)
    : QAbstractListModel(parent), m_source(source) {}

int LineListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_announced);
}

QVariant LineListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= m_source.lineCount())
        return QVariant();
    return m_source.line(index.row());
}

void LineListModel::measure(qsizetype from, qsizetype to) {
    for (qsizetype row = from; row < to; ++row)
        m_longest = qMax(m_longest, m_source.line(row).size());
}

bool LineListModel::sync() {
    const qsizetype count = m_source.lineCount();
    const qsizetype before = m_announced;
    if (count < m_announced) {
        beginRemoveRows(QModelIndex(), int(count), int(m_announced - 1));
        m_announced = count;
        endRemoveRows();
    }
    // The last line shown may have grown or lost its last character.
    if (m_announced > 0) {
        const QModelIndex last = index(int(m_announced - 1));
        measure(m_announced - 1, m_announced);
        Q_EMIT dataChanged(last, last, {Qt::DisplayRole});
    }
    if (count > m_announced) {
        beginInsertRows(QModelIndex(), int(m_announced), int(count - 1));
        measure(m_announced, count);
        m_announced = count;
        endInsertRows();
    }
    return count > before;
}

void LineListModel::reset() {
    beginResetModel();
    m_announced = 0;
    m_longest = 0;
    endResetModel();
}

} // namespace larkspur
