#include "script/check_quotes.h"

#include "protocol/readable_notation.h"

namespace larkspur {

namespace {
// The most of a long text a finding quotes.
constexpr qsizetype quotedAtMost = 80;
} // namespace

QString quoted(const QString& text) {
    return u'"' + toReadable(text.toLatin1()) + u'"';
}

QString quotedShort(const QString& text) {
    if (text.size() <= quotedAtMost)
        return quoted(text);
    return u'"' + toReadable(text.left(quotedAtMost).toLatin1()) +
           QStringLiteral("...\" (%1 characters)").arg(text.size());
}

} // namespace larkspur
