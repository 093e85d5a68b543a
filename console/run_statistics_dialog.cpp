#include "console/run_statistics_dialog.h"

#include "records/run_statistics.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace larkspur {

namespace {
// Exchanges end a few times a second at most; the table follows without redrawing for each.
constexpr int refreshIntervalMs = 250;

QString milliseconds(qint64 ms) {
    return ms < 0 ? QStringLiteral("-") : QString::number(ms);
}

QTableWidgetItem* item(const QString& text, bool number) {
    auto* cell = new QTableWidgetItem(text);
    cell->setTextAlignment(Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft));
    return cell;
}
} // namespace

RunStatisticsDialog::RunStatisticsDialog(RunStatistics& statistics, QWidget* parent)
    : QDialog(parent), m_statistics(statistics), m_table(new QTableWidget(this)) {
    setObjectName(QStringLiteral("runStatisticsDialog"));
    setWindowTitle(tr("Run Statistics"));

    m_table->setObjectName(QStringLiteral("runStatisticsTable"));
    const QStringList headers = {tr("Message type"), tr("Sent"),   tr("Acked"),     tr("Refused"),
                                 tr("Timed out"),    tr("Min ms"), tr("Median ms"), tr("Max ms")};
    m_table->setColumnCount(int(headers.size()));
    m_table->setHorizontalHeaderLabels(headers);
    // A summary to read: nothing to edit, select or focus.
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->setFocusPolicy(Qt::NoFocus);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(refreshIntervalMs);
    connect(&m_refreshTimer, &QTimer::timeout, this, &RunStatisticsDialog::refresh);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    // Enter closes; the counts go only when the operator says so twice.
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    QPushButton* resetButton = buttons->addButton(tr("Reset"), QDialogButtonBox::ResetRole);
    resetButton->setObjectName(QStringLiteral("runStatisticsReset"));
    resetButton->setAutoDefault(false);
    connect(resetButton, &QPushButton::clicked, this, &RunStatisticsDialog::askToReset);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_table);
    layout->addWidget(buttons);
    resize(720, 360);
}

void RunStatisticsDialog::statisticsChanged() {
    // A closed dialog catches up when it is shown.
    if (isVisible() && !m_refreshTimer.isActive())
        m_refreshTimer.start();
}

void RunStatisticsDialog::refresh() {
    m_refreshTimer.stop();
    const QMap<QString, RunStatistics::Row>& rows = m_statistics.rows();
    m_table->setRowCount(int(rows.size()));
    int r = 0;
    for (auto it = rows.cbegin(); it != rows.cend(); ++it, ++r) {
        const RunStatistics::Row& s = it.value();
        const QString cells[] = {it.key(),
                                 QString::number(s.sent),
                                 QString::number(s.acknowledged),
                                 QString::number(s.refused),
                                 QString::number(s.timedOut),
                                 milliseconds(s.minMs()),
                                 milliseconds(s.medianMs()),
                                 milliseconds(s.maxMs())};
        for (int column = 0; column < int(std::size(cells)); ++column)
            m_table->setItem(r, column, item(cells[column], column > 0));
    }
}

void RunStatisticsDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    refresh();
}

void RunStatisticsDialog::askToReset() {
    QMessageBox ask(QMessageBox::Question, tr("Reset Run Statistics"),
                    tr("Reset every count and answer time of this run?"), QMessageBox::NoButton,
                    this);
    ask.setObjectName(QStringLiteral("runStatisticsResetQuestion"));
    QPushButton* reset = ask.addButton(tr("Reset"), QMessageBox::DestructiveRole);
    ask.setDefaultButton(ask.addButton(QMessageBox::Cancel));
    ask.exec();
    if (ask.clickedButton() != reset)
        return;
    m_statistics = RunStatistics();
    refresh();
}

} // namespace larkspur
