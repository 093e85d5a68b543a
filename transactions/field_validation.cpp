#include "transactions/field_validation.h"

#include "core/operator_interface.h"

namespace larkspur {

QString verify_string(const QString& text, qint16 width, const QString& justification) {
    const QString blanks(qMax<qint16>(0, width), QLatin1Char(' '));
    if (text.isEmpty() || text.size() > width)
        return NotValid;
    if (justification == u"R")
        return (blanks + text).right(width);
    if (justification == u"L")
        return (text + blanks).left(width);
    return QString();
}

QString verify_member(const QString& text, qint16 width) {
    if (text.isEmpty())
        return QString();
    if (text.size() > width)
        return NotValid;
    const QString blanks(qMax<qint16>(0, width), QLatin1Char(' '));
    return (blanks + text).right(width) + QLatin1Char(' ');
}

QString get_wakeup_time(QString& time) {
    static const QString allowed[4] = {QStringLiteral("012"), QStringLiteral("0123456789"),
                                       QStringLiteral("012345"), QStringLiteral("0123456789")};
    if (time.size() != 4) {
        time = NotValid;
        return time;
    }
    for (int i = 0; i < 4; ++i) {
        if (!allowed[i].contains(time.at(i))) {
            time = NotValid;
            break;
        }
    }
    return time;
}

QString roomForm(const QString& text) {
    return verify_string(text, 5, QStringLiteral("R"));
}

QString filter_printable(const QString& text, OperatorInterface& op) {
    QString kept;
    for (QChar c : text) {
        op.notify(QString::number(c.unicode()));
        if (c.unicode() < 127 && c != QLatin1Char(' '))
            kept.append(c);
    }
    return kept;
}

} // namespace larkspur
