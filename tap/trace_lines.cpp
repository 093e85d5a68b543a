#include "tap/trace_lines.h"

#include "protocol/readable_notation.h"

namespace larkspur::tap {

namespace {
QString stamp(const QDateTime& time) {
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
}
} // namespace

QString messageLine(const QDateTime& time, Side from, const QByteArray& bytes,
                    const QString& description) {
    return stamp(time) + u' ' + directionName(from) + u' ' + toReadable(bytes) +
           QStringLiteral("   ; ") + description;
}

QString noteLine(const QDateTime& time, const QString& text) {
    return stamp(time) + QStringLiteral(" -- ") + text;
}

} // namespace larkspur::tap
