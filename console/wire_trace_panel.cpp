#include "console/wire_trace_panel.h"

#include "core/operator_interface.h"
#include "records/wire_trace.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

namespace larkspur {

namespace {
const QString textFilter = QStringLiteral("Text files (*.txt);;All files (*)");

QPushButton* addButton(QHBoxLayout* row, const QString& caption, const char* name) {
    auto* button = new QPushButton(caption);
    button->setObjectName(QLatin1String(name));
    row->addWidget(button);
    return button;
}
} // namespace

WireTracePanel::WireTracePanel(WireTrace& trace, OperatorInterface& op, QWidget* parent)
    : QDockWidget(tr("Wire Trace"), parent), m_trace(trace), m_operator(op), m_model(trace),
      m_view(new QTableView) {
    setObjectName(QStringLiteral("wireTraceDock"));

    m_view->setObjectName(QStringLiteral("wireTraceView"));
    m_view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_view->setModel(&m_model);
    m_view->setShowGrid(false);
    m_view->setWordWrap(false);
    m_view->setAlternatingRowColors(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // Rows of one fixed height: the view never measures a row, however many there are.
    QHeaderView* rows = m_view->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(m_view->fontMetrics().height() + 2);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setColumnWidths();
    // Following: the newest row stays in view as rows come and as the panel is resized.
    QScrollBar* scroll = m_view->verticalScrollBar();
    connect(scroll, &QScrollBar::rangeChanged, this, [this, scroll](int, int maximum) {
        if (!m_model.isPaused())
            scroll->setValue(maximum);
    });

    auto* buttons = new QHBoxLayout;
    QPushButton* pause = addButton(buttons, tr("Pause"), "wireTracePause");
    pause->setCheckable(true);
    connect(pause, &QPushButton::toggled, this, [this](bool paused) {
        m_model.setPaused(paused);
        if (!paused)
            m_view->scrollToBottom();
    });
    connect(addButton(buttons, tr("Clear"), "wireTraceClear"), &QPushButton::clicked, &m_model,
            &WireTraceModel::clear);
    connect(addButton(buttons, tr("Save as Text..."), "wireTraceSave"), &QPushButton::clicked, this,
            &WireTracePanel::saveAsText);
    buttons->addStretch();

    auto* contents = new QWidget;
    auto* layout = new QVBoxLayout(contents);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(buttons);
    layout->addWidget(m_view, 1);
    setWidget(contents);
}

void WireTracePanel::setColumnWidths() {
    // Monospace: a column's width follows from the characters it should hold.
    const int character = m_view->fontMetrics().horizontalAdvance(QLatin1Char('0'));
    const struct {
        WireTraceModel::Column column;
        int characters;
    } widths[] = {
        {WireTraceModel::Time, 14},
        {WireTraceModel::Direction, 5},
        {WireTraceModel::Readable, 44},
        {WireTraceModel::Hex, 40},
    };
    for (const auto& w : widths)
        m_view->setColumnWidth(w.column, w.characters * character);
}

void WireTracePanel::saveAsText() {
    const QString path = m_operator.chooseFileToSave(textFilter);
    if (path.isEmpty())
        return;
    QByteArray text;
    for (qsizetype i = 0; i < m_trace.size(); ++i)
        text += (WireTrace::format(m_trace.row(i)) + QLatin1Char('\n')).toUtf8();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        m_operator.notify(tr("Cannot write %1: %2").arg(path, file.errorString()));
}

} // namespace larkspur
