#pragma once

#include "transactions/fields.h"

#include <QObject>

class QLineEdit;

namespace larkspur {

// Keeps each input field's text box and its text in Fields the same: what the operator types
// goes to Fields, what the engine writes (a script filling a field, a cut mailbox) shows.
class FieldBinder : public QObject {
    Q_OBJECT
public:
    explicit FieldBinder(Fields& fields, QObject* parent = nullptr);

    void bind(Field field, QLineEdit* edit);

private:
    Fields& m_fields;
    std::array<QLineEdit*, fieldCount> m_edits{};
};

} // namespace larkspur
