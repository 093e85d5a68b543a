#pragma once

#include <QObject>
#include <QString>

#include <array>

namespace larkspur {

// The input fields of the console, named as their controls. The engine reads them, and writes
// them where the operator must see the change (an over-long mailbox cut, a script filling them).
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

class Fields : public QObject {
    Q_OBJECT
public:
    const QString& text(Field field) const { return m_texts[size_t(field)]; }
    void setText(Field field, const QString& text);

    // The control's name, e.g. "txt_suite_1".
    static QString name(Field field);

Q_SIGNALS:
    void changed(larkspur::Field field, const QString& text);

private:
    std::array<QString, fieldCount> m_texts;
};

} // namespace larkspur
