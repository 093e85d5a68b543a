#pragma once

#include "core/field.h"

#include <QObject>
#include <QString>

#include <array>

namespace larkspur {

// The texts of the input fields. The engine reads them, and writes them where the operator must
// see the change (an over-long mailbox cut, a script filling them).
class Fields : public QObject {
    Q_OBJECT
public:
    const QString& text(Field field) const { return m_texts[size_t(field)]; }
    void setText(Field field, const QString& text);

Q_SIGNALS:
    void changed(larkspur::Field field, const QString& text);

private:
    std::array<QString, fieldCount> m_texts;
};

} // namespace larkspur
