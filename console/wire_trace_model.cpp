#include "console/wire_trace_model.h"

#include "protocol/readable_notation.h"
#include "records/wire_trace.h"

#include <QColor>

namespace larkspur {

namespace {
// A few updates a second keep the view live; more would only cost the console under a flood.
constexpr int batchIntervalMs = 200;

QString direction(WireRow::Kind kind) {
    switch (kind) {
    case WireRow::Kind::Sent:
        return QStringLiteral("TX");
    case WireRow::Kind::Received:
        return QStringLiteral("RX");
    case WireRow::Kind::Note:
        break;
    }
    return QStringLiteral("--");
}

QString cell(const WireRow& row, int column) {
    switch (column) {
    case WireTraceModel::Time:
        return row.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    case WireTraceModel::Direction:
        return direction(row.kind);
    case WireTraceModel::Readable:
        return toReadable(row.bytes);
    case WireTraceModel::Hex:
        return QString::fromLatin1(row.bytes.toHex(' ').toUpper());
    case WireTraceModel::Note:
        return row.note;
    }
    return QString();
}
} // namespace

WireTraceModel::WireTraceModel(WireTrace& trace, QObject* parent)
    : QAbstractTableModel(parent), m_trace(trace) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(batchIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &WireTraceModel::sync);
    connect(&trace, &WireTrace::rowAdded, this, &WireTraceModel::schedule);
    sync();
}

int WireTraceModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_shown);
}

int WireTraceModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant WireTraceModel::data(const QModelIndex& index, int role) const {
    // A row the ring dropped while the view was paused has nothing left to show.
    const qsizetype at = m_firstShown + index.row() - m_trace.dropped();
    if (!index.isValid() || at < 0 || at >= m_trace.size())
        return QVariant();
    const WireRow& row = m_trace.row(at);
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return cell(row, column);
    case Qt::ToolTipRole:
        // Long frames are cut off in their columns; the tip shows them whole.
        return column == Readable || column == Hex ? QVariant(cell(row, column)) : QVariant();
    case Qt::ForegroundRole:
        // Mid tones, readable on light and dark palettes alike.
        if (column == Direction && row.kind != WireRow::Kind::Note)
            return QColor(row.kind == WireRow::Kind::Sent ? 0x2a62c9 : 0x2e8b3a);
        break;
    }
    return QVariant();
}

QVariant WireTraceModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case Time:
        return tr("Time");
    case Direction:
        return tr("Dir");
    case Readable:
        return tr("Readable");
    case Hex:
        return tr("Hex");
    case Note:
        return tr("Note");
    }
    return QVariant();
}

void WireTraceModel::schedule() {
    // Called for every row recorded: nothing here may cost more than a look at the timer.
    if (!m_paused && !m_timer.isActive())
        m_timer.start();
}

void WireTraceModel::setPaused(bool paused) {
    m_paused = paused;
    sync();
}

void WireTraceModel::sync() {
    m_timer.stop();
    if (m_paused)
        return;
    const qsizetype dropped = m_trace.dropped();
    const qsizetype size = m_trace.size();
    if (dropped - m_firstShown >= m_shown) {
        // Every row shown is gone (or none was shown): starting over is cheaper than removing.
        beginResetModel();
        m_firstShown = dropped;
        m_shown = size;
        endResetModel();
        return;
    }
    if (dropped > m_firstShown) {
        beginRemoveRows(QModelIndex(), 0, int(dropped - m_firstShown - 1));
        m_shown -= dropped - m_firstShown;
        m_firstShown = dropped;
        endRemoveRows();
    }
    if (size > m_shown) {
        beginInsertRows(QModelIndex(), int(m_shown), int(size - 1));
        m_shown = size;
        endInsertRows();
    }
}

void WireTraceModel::clear() {
    m_timer.stop();
    beginResetModel();
    m_trace.clear();
    m_firstShown = 0;
    m_shown = 0;
    endResetModel();
}

} // namespace larkspur
