#include "protocol/readable_notation.h"

#include "protocol/frame.h"

#include <algorithm>
#include <array>

namespace larkspur {

namespace {

struct Tag {
    const char* name;
    char16_t code;
};

constexpr std::array<Tag, 5> controlTags{{
    {"STX", ctl::STX},
    {"ETX", ctl::ETX},
    {"ENQ", ctl::ENQ},
    {"ACK", ctl::ACK},
    {"NAK", ctl::NAK},
}};

int hexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

QByteArray fail(QString* error, const QString& reason) {
    if (error)
        *error = reason;
    return {};
}

bool isBareControl(char byte) {
    return byte == char(ctl::ENQ) || byte == char(ctl::ACK) || byte == char(ctl::NAK);
}

} // namespace

QByteArray parseReadable(const QString& text, QString* error) {
    QByteArray bytes;
    qsizetype checkFrom = 0; // where the next <BCC> starts: just after the last STX
    auto append = [&](char byte) {
        bytes.append(byte);
        if (byte == char(ctl::STX))
            checkFrom = bytes.size();
    };

    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == u'\\') {
            const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
            if (next == u'\\') {
                append('\\');
                i += 1;
                continue;
            }
            if (next != u'x')
                return fail(error, QStringLiteral("at %1: unknown escape \"%2\" (write a byte as "
                                                  "\\xHH, a backslash as \\\\)")
                                       .arg(i + 1)
                                       .arg(text.mid(i, 2)));
            const int high = i + 2 < text.size() ? hexDigit(text.at(i + 2)) : -1;
            const int low = i + 3 < text.size() ? hexDigit(text.at(i + 3)) : -1;
            if (high < 0 || low < 0)
                return fail(error, QStringLiteral("at %1: \"%2\" is not \\x and two hex digits")
                                       .arg(i + 1)
                                       .arg(text.mid(i, 4)));
            append(char(high * 16 + low));
            i += 3;
        } else if (c == u'<') {
            const qsizetype close = text.indexOf(u'>', i + 1);
            const QString name = close < 0 ? QString() : text.mid(i + 1, close - i - 1);
            if (name == u"BCC") {
                bytes.append(blockCheck(QByteArrayView(bytes).sliced(checkFrom)));
            } else {
                const auto tag = std::find_if(controlTags.begin(), controlTags.end(),
                                              [&](const Tag& t) { return name == t.name; });
                if (tag == controlTags.end())
                    return fail(error,
                                QStringLiteral("at %1: \"%2\" is not one of <STX> <ETX> <ENQ> "
                                               "<ACK> <NAK> <BCC> (write a literal '<' as \\x3C)")
                                    .arg(i + 1)
                                    .arg(close < 0 ? text.mid(i) : text.mid(i, close - i + 1)));
                append(char(tag->code));
            }
            i = close;
        } else if (c.unicode() > 0xFF) {
            return fail(error, QStringLiteral("at %1: character U+%2 is wider than a byte")
                                   .arg(i + 1)
                                   .arg(c.unicode(), 4, 16, QLatin1Char('0')));
        } else {
            append(char(c.unicode()));
        }
    }
    if (error)
        error->clear();
    return bytes;
}

QByteArray parseMessage(const QString& text, QString* error) {
    QString why;
    const QByteArray bytes = parseReadable(text, &why);
    if (error)
        *error = why;
    if (!why.isEmpty())
        return {};
    const bool framesItself = bytes.contains(char(ctl::STX));
    const bool bareControls =
        !bytes.isEmpty() && std::all_of(bytes.begin(), bytes.end(), isBareControl);
    if (framesItself || bareControls)
        return bytes;
    return char(ctl::STX) + bytes + char(ctl::ETX);
}

QString toReadable(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto tag = std::find_if(controlTags.begin(), controlTags.end(),
                                      [&](const Tag& t) { return byte == char(t.code); });
        const auto u = quint8(byte);
        if (tag != controlTags.end())
            text += QStringLiteral("<%1>").arg(QLatin1String(tag->name));
        else if (u < 32 || u > 126 || byte == '\\' || byte == '<')
            text +=
                QStringLiteral("\\x") + QString::number(u, 16).rightJustified(2, u'0').toUpper();
        else
            text += QLatin1Char(byte);
    }
    return text;
}

} // namespace larkspur
