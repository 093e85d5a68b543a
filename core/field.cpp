#include "core/field.h"

namespace larkspur {

QString fieldName(Field field) {
    static const char* const names[fieldCount] = {
        "txt_suite_1", "txt_suite_2",    "txt_suite_3",  "txt_suite_4", "txt_ls_pilot",
        "Text1",       "txt_department", "txt_location", "txt_time",    "txt_credit",
    };
    return QString::fromLatin1(names[size_t(field)]);
}

} // namespace larkspur
