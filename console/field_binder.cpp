#include "console/field_binder.h"

#include <QLineEdit>

namespace larkspur {

FieldBinder::FieldBinder(Fields& fields, QObject* parent) : QObject(parent), m_fields(fields) {
    connect(&fields, &Fields::changed, this, [this](Field field, const QString& text) {
        QLineEdit* edit = m_edits[size_t(field)];
        if (edit && edit->text() != text)
            edit->setText(text);
    });
}

void FieldBinder::bind(Field field, QLineEdit* edit) {
    m_edits[size_t(field)] = edit;
    edit->setText(m_fields.text(field));
    // Every way the text changes counts: typing, paste, drag and drop, assistive technology, GUI
    // automation. The engine's own writes come back equal and stop there.
    connect(edit, &QLineEdit::textChanged, this,
            [this, field](const QString& text) { m_fields.setText(field, text); });
}

} // namespace larkspur
