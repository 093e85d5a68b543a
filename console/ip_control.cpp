#include "console/ip_control.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpressionValidator>
#include <QToolTip>

#include <algorithm>
#include <memory>
#include <utility>

namespace larkspur {

IPControl::IPControl(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* digits =
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,3}")), this);
    const int fieldWidth = fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 12;
    for (int i = 0; i < 4; ++i) {
        if (i > 0)
            layout->addWidget(new QLabel(QStringLiteral("."), this));
        auto* field = new QLineEdit(this);
        field->setObjectName(QStringLiteral("field_%1").arg(i));
        field->setValidator(digits);
        field->setMaxLength(3);
        field->setAlignment(Qt::AlignCenter);
        field->setFixedWidth(fieldWidth);
        field->installEventFilter(this);
        connect(field, &QLineEdit::editingFinished, this, [this, i] { constrainField(i); });
        connect(field, &QLineEdit::textEdited, this, [this, i](const QString& text) {
            if (text.size() == 3 && i < 3) {
                moveTo(i + 1);
                m_movedOnInto = i + 1;
            }
        });
        m_fields[size_t(i)] = field;
        layout->addWidget(field);
    }
    layout->addStretch();
    setFocusProxy(m_fields[0]);
}

IPControl::~IPControl() {
    // QWidget deletes the fields after this part of the object is gone, and a field that has
    // the focus then reports its editing finished: nothing of this may hear it.
    for (QLineEdit* field : m_fields) {
        field->removeEventFilter(this);
        disconnect(field, nullptr, this, nullptr);
    }
}

QString IPControl::Address() const {
    quint8 bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[i] = quint8(m_fields[size_t(i)]->text().toInt());
    return formatAddress(packAddress(bytes[0], bytes[1], bytes[2], bytes[3]));
}

QString IPControl::setAddress(const QString& text) {
    const AddressText parsed = parseAddressText(text);
    if (parsed.outcome == AddressText::Outcome::Set) {
        for (int i = 0; i < 4; ++i)
            m_fields[size_t(i)]->setText(QString::number(addressByte(parsed.address, i)));
    }
    return parsed.error;
}

void IPControl::ClearAddress() {
    for (QLineEdit* field : m_fields)
        field->clear();
}

void IPControl::SetFieldRange(int low, int high, int field) {
    if (field < 0 || field > 3)
        return;
    m_ranges[size_t(field)] = decodeFieldRange(packFieldRange(low, high));
}

void IPControl::SetFieldFocus(int field) {
    if (field >= 0 && field <= 3)
        moveTo(field);
}

bool IPControl::IsBlank() const {
    for (const QLineEdit* field : m_fields) {
        if (!field->text().isEmpty())
            return false;
    }
    return true;
}

void IPControl::constrainField(int field) {
    QLineEdit* edit = m_fields[size_t(field)];
    if (edit->text().isEmpty())
        return;
    const int value = constrainToRange(edit->text().toInt(), m_ranges[size_t(field)]);
    const QString text = QString::number(value);
    if (edit->text() != text)
        edit->setText(text);
}

void IPControl::moveTo(int field) {
    QLineEdit* edit = m_fields[size_t(field)];
    edit->setFocus(Qt::OtherFocusReason);
    edit->selectAll();
}

bool IPControl::eventFilter(QObject* watched, QEvent* event) {
    const int field = int(std::find(m_fields.begin(), m_fields.end(), watched) - m_fields.begin());
    if (field > 3)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::KeyPress:
        return keyPressed(field, *static_cast<QKeyEvent*>(event));
    case QEvent::MouseButtonPress:
        m_movedOnInto.reset();
        return false;
    case QEvent::ContextMenu:
        showContextMenu(field, static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    default:
        return false;
    }
}

bool IPControl::keyPressed(int field, const QKeyEvent& key) {
    // A modifier alone types nothing (some keyboards need Shift for the digits or the ".").
    if (key.key() == Qt::Key_Shift || key.key() == Qt::Key_Control || key.key() == Qt::Key_Alt ||
        key.key() == Qt::Key_AltGr || key.key() == Qt::Key_Meta)
        return false;
    // Only the key right after a move is the move's own.
    const bool justMovedHere = std::exchange(m_movedOnInto, std::nullopt) == field;
    if (key.matches(QKeySequence::Paste))
        return paste(field);
    if (key.text() == u".") {
        if (!justMovedHere && field < 3 && !m_fields[size_t(field)]->text().isEmpty())
            moveTo(field + 1);
        return true;
    }
    if (key.key() == Qt::Key_Backspace && m_fields[size_t(field)]->text().isEmpty() && field > 0) {
        moveTo(field - 1);
        return true;
    }
    return false;
}

bool IPControl::paste(int field) {
    const QString text = QApplication::clipboard()->text();
    // Digits alone go into this field as typed ones do.
    if (!text.contains(u'.'))
        return false;
    const PastedAddress pasted = splitPastedAddress(text, field);
    QLineEdit* edit = m_fields[size_t(field)];
    if (!pasted.error.isEmpty()) {
        QToolTip::showText(edit->mapToGlobal(QPoint(0, edit->height())),
                           QStringLiteral("Not pasted: %1").arg(pasted.error), edit);
        return true;
    }
    const int last = field + int(pasted.fields.size()) - 1;
    for (int i = field; i <= last; ++i)
        m_fields[size_t(i)]->setText(pasted.fields[i - field]);
    m_fields[size_t(last)]->setFocus(Qt::OtherFocusReason);
    m_fields[size_t(last)]->end(false);
    return true;
}

void IPControl::showContextMenu(int field, const QPoint& at) {
    QLineEdit* edit = m_fields[size_t(field)];
    const std::unique_ptr<QMenu> menu(edit->createStandardContextMenu());
    // The menu's Paste (named as the field names it, in any language) goes the keyboard's way.
    for (QAction* entry : menu->actions()) {
        if (entry->text().section(u'\t', 0, 0) != QLineEdit::tr("&Paste"))
            continue;
        disconnect(entry, &QAction::triggered, nullptr, nullptr);
        connect(entry, &QAction::triggered, this, [this, field, edit] {
            if (!paste(field))
                edit->paste();
        });
    }
    menu->exec(at);
}

} // namespace larkspur
