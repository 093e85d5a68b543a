#include "transactions/fields.h"

namespace larkspur {

void Fields::setText(Field field, const QString& text) {
    QString& current = m_texts[size_t(field)];
    if (current == text)
        return;
    current = text;
    Q_EMIT changed(field, text);
}

} // namespace larkspur
