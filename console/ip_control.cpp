#include "console/ip_control.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>

#include <algorithm>

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
            if (text.size() == 3 && i < 3)
                moveTo(i + 1);
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
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const int field = int(std::find(m_fields.begin(), m_fields.end(), watched) - m_fields.begin());
    if (field > 3)
        return false;
    if (key->text() == u".") {
        // Right after a third digit moved on, the "." that would have moved is swallowed.
        if (field < 3 && !m_fields[size_t(field)]->text().isEmpty())
            moveTo(field + 1);
        return true;
    }
    if (key->key() == Qt::Key_Backspace && m_fields[size_t(field)]->text().isEmpty() && field > 0) {
        moveTo(field - 1);
        return true;
    }
    return false;
}

} // namespace larkspur
