#include "console/line_view.h"

#include "console/line_list_model.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

namespace larkspur {

namespace {
// Often enough to look live, seldom enough that a flood of lines costs little.
constexpr int syncIntervalMs = 40;
constexpr int textMargin = 8;
} // namespace

LineView::LineView(QWidget* parent) : QTableView(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideNone);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    horizontalHeader()->hide();
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 2);

    m_syncTimer.setSingleShot(true);
    m_syncTimer.setInterval(syncIntervalMs);
    connect(&m_syncTimer, &QTimer::timeout, this, &LineView::syncNow);

    auto* copy = new QAction(tr("&Copy"), this);
    connect(copy, &QAction::triggered, this, &LineView::copySelection);
    auto* selectEverything = new QAction(tr("Select &All"), this);
    connect(selectEverything, &QAction::triggered, this, &QAbstractItemView::selectAll);
    addActions({copy, selectEverything});
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void LineView::setLineModel(LineListModel* model) {
    m_model = model;
    setModel(model);
    fitColumn();
}

void LineView::scheduleSync() {
    if (!m_syncTimer.isActive())
        m_syncTimer.start();
}

void LineView::syncNow() {
    m_syncTimer.stop();
    if (!m_model)
        return;
    if (m_model->sync())
        scrollToBottom();
    fitColumn();
    Q_EMIT synced();
}

QString LineView::selectedText() const {
    QList<std::pair<int, int>> spans;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        spans.append({range.top(), range.bottom()});
    std::sort(spans.begin(), spans.end());
    QStringList lines;
    int next = 0;
    for (const auto& [top, bottom] : spans) {
        for (int row = std::max(top, next); row <= bottom; ++row)
            lines.append(model()->index(row, 0).data().toString());
        next = std::max(next, bottom + 1);
    }
    return lines.join(u'\n');
}

void LineView::copySelection() {
    QApplication::clipboard()->setText(selectedText());
}

void LineView::keyPressEvent(QKeyEvent* event) {
    if (event == QKeySequence::Copy) {
        copySelection();
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void LineView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fitColumn();
}

void LineView::fitColumn() {
    if (!m_model)
        return;
    // Monospace: the longest line's width follows from its length, no row has to be measured.
    const qsizetype content =
        m_model->longestLine() * fontMetrics().horizontalAdvance(QLatin1Char('M')) + 2 * textMargin;
    const int width = int(qMax<qsizetype>(viewport()->width(), content));
    if (horizontalHeader()->sectionSize(0) != width)
        horizontalHeader()->resizeSection(0, width);
}

} // namespace larkspur
