#include "transactions/fields.h"

namespace larkspur {

void Fields::setText(Field field, const QString& text) {
    QString& current = m_texts[size_t(field)];
    if (current == text)
        return;
    current = text;
    Q_EMIT changed(field, text);
}

QString Fields::name(Field field) {
    static const char* const names[fieldCount] = {
        "txt_suite_1", "txt_suite_2",    "txt_suite_3",  "txt_suite_4", "txt_ls_pilot",
        "Text1",       "txt_department", "txt_location", "txt_time",    "txt_credit",
    };
    return QString::fromLatin1(names[size_t(field)]);
}

} // namespace larkspur
