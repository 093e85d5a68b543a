#include "console/check_script_dialog.h"

#include "protocol/readable_notation.h"
#include "script/script_check.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

namespace larkspur {

namespace {

enum Column { LineColumn, CommandColumn, FieldsColumn, DrivesColumn, ColumnCount };

const QColor warningShade(255, 236, 179);
const QColor stopShade(255, 205, 205);

QString fieldsText(const CheckRow& row) {
    QStringList fields;
    for (const CheckedField& f : row.fields)
        fields << f.describe();
    return fields.join(QStringLiteral("   "));
}

} // namespace

CheckScriptDialog::CheckScriptDialog(QWidget* parent)
    : QDialog(parent), m_summary(new QLabel(this)), m_table(new QTableWidget(this)),
      m_findings(new QListWidget(this)) {
    setObjectName(QStringLiteral("checkScriptDialog"));
    setWindowTitle(tr("Check Script"));
    m_summary->setObjectName(QStringLiteral("checkScriptSummary"));
    m_summary->setWordWrap(true);

    m_table->setObjectName(QStringLiteral("checkScriptTable"));
    m_table->setColumnCount(ColumnCount);
    m_table->setHorizontalHeaderLabels(
        {tr("Line:col"), tr("Command"), tr("Fields (columns)"), tr("Drives")});
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setWordWrap(false);
    // Field columns only line up in a fixed-width font.
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_table->setFont(fixed);

    m_findings->setObjectName(QStringLiteral("checkScriptFindings"));

    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(m_table);
    split->addWidget(m_findings);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    // Enter closes: running the script against the PBX takes a click of its own.
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    m_run = buttons->addButton(tr("Run Script"), QDialogButtonBox::AcceptRole);
    m_run->setObjectName(QStringLiteral("checkScriptRun"));
    m_run->setAutoDefault(false);
    connect(m_run, &QPushButton::clicked, this, [this] {
        accept();
        Q_EMIT runRequested(m_path);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(split);
    layout->addWidget(buttons);
    resize(980, 560);
}

void CheckScriptDialog::showCheck(const QString& path, const ScriptCheck& check) {
    m_path = path;
    m_summary->setText(QStringLiteral("%1: %2 script, protocol %3, commands reached: %4; %5")
                           .arg(QFileInfo(path).fileName(), pmsModeName(check.pmsMode),
                                protocolName(check.protocolType))
                           .arg(check.rows.size())
                           .arg(check.verdictText()));
    m_table->setRowCount(int(check.rows.size()));
    for (int r = 0; r < int(check.rows.size()); ++r) {
        const CheckRow& row = check.rows[r];
        QStringList found;
        for (const CheckFinding& f : check.findings)
            if (f.level != CheckFinding::Level::Note && f.line == row.line)
                found << f.text;
        const QString mark = row.stops    ? QStringLiteral("X ")
                             : row.warned ? QStringLiteral("! ")
                                          : QStringLiteral("  ");
        const QString cells[ColumnCount] = {
            mark + QStringLiteral("%1:%2").arg(row.line).arg(row.column),
            toReadable(row.command.toLatin1()), fieldsText(row), row.drives};
        for (int c = 0; c < ColumnCount; ++c) {
            auto* item = new QTableWidgetItem(cells[c]);
            if (row.stops || row.warned)
                item->setBackground(row.stops ? stopShade : warningShade);
            if (!found.isEmpty())
                item->setToolTip(found.join(QLatin1Char('\n')));
            m_table->setItem(r, c, item);
        }
    }
    m_findings->clear();
    for (const CheckFinding& f : check.findings) {
        auto* item = new QListWidgetItem(
            QStringLiteral("%1: %2: %3").arg(f.lines(), f.levelName(), f.text), m_findings);
        if (f.level != CheckFinding::Level::Note)
            item->setBackground(f.level == CheckFinding::Level::Stop ? stopShade : warningShade);
    }
}

void CheckScriptDialog::setRunEnabled(bool enabled) {
    m_run->setEnabled(enabled);
}

} // namespace larkspur
