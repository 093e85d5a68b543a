#include "console/log_view.h"

#include "console/line_view.h"
#include "records/log_view_list.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace larkspur {

qsizetype LogView::Source::lineCount() const {
    return m_list.size();
}

QString LogView::Source::line(qsizetype index) const {
    return m_list.entry(index).toString();
}

LogView::LogView(const LogViewList& list, QWidget* parent)
    : QDialog(parent), m_source(list), m_view(new LineView(this)) {
    setObjectName(QStringLiteral("LogView"));
    setWindowTitle(tr("Log"));
    m_view->setObjectName(QStringLiteral("lst_log"));
    m_view->setLineModel(&m_model);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("OK"));
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addWidget(buttons);
    resize(720, 480);
}

void LogView::entriesAdded() {
    // A hidden viewer catches up when it is shown.
    if (isVisible())
        m_view->scheduleSync();
}

void LogView::entriesCleared() {
    m_model.reset();
}

void LogView::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    m_view->syncNow();
}

} // namespace larkspur
