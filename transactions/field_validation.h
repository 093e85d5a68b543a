#pragma once

#include <QString>

namespace larkspur {

class OperatorInterface;

// The one invalid result of the verify routines; callers compare against it literally.
inline const QString NotValid = QStringLiteral("NotValid");

// The field brought to exactly `width` characters, justified by "R" or "L"; "NotValid" when
// empty or too long; empty for any other justification code. Only the length is judged.
QString verify_string(const QString& text, qint16 width, const QString& justification);

// A linked-suite member: right-justified to `width` plus one trailing blank; empty for an empty
// member; "NotValid" when too long.
QString verify_member(const QString& text, qint16 width);

// Four characters, checked digit by digit (hour 0-2 then 0-9, minute 0-5 then 0-9); an invalid
// time is overwritten with "NotValid". Returns the (possibly overwritten) time.
QString get_wakeup_time(QString& time);

// A room number in its sent form: five characters, right-justified; "NotValid" when empty or
// longer. The hotel transactions apply it to the blank-trimmed field, the linked-suite pilots and
// the expected-message waits to the field as it stands.
QString roomForm(const QString& text);

// Keeps characters below 127 other than blank, telling the operator each character's code first.
QString filter_printable(const QString& text, OperatorInterface& op);

} // namespace larkspur
