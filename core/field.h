#pragma once

#include <QString>

#include <array>

namespace larkspur {

// The input fields of the console, named as their controls.
enum class Field {
    txt_suite_1,
    txt_suite_2,
    txt_suite_3,
    txt_suite_4,
    txt_ls_pilot,
    Text1,
    txt_department,
    txt_location,
    txt_time,
    txt_credit,
};
constexpr int fieldCount = int(Field::txt_credit) + 1;

// Every hotel transaction visits the room fields in this order.
constexpr std::array<Field, 5> roomFields = {Field::txt_suite_1, Field::txt_suite_2,
                                             Field::txt_suite_3, Field::txt_suite_4,
                                             Field::txt_ls_pilot};

// The control's name, e.g. "txt_suite_1".
QString fieldName(Field field);

} // namespace larkspur
