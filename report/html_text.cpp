#include "report/html_text.h"

#include "protocol/readable_notation.h"

namespace larkspur {

QString htmlText(const QString& text) {
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'<':
            out += QStringLiteral("&lt;");
            break;
        case u'>':
            out += QStringLiteral("&gt;");
            break;
        case u'&':
            out += QStringLiteral("&amp;");
            break;
        case u'"':
            out += QStringLiteral("&quot;");
            break;
        case u'\n':
            out += c;
            break;
        default:
            if (c.unicode() < 0x20 || c.unicode() == 0x7F ||
                (c.unicode() >= 0x80 && c.unicode() < 0xA0))
                out += htmlText(toReadable(QByteArray(1, char(c.unicode()))));
            else
                out += c;
        }
    }
    return out;
}

QString htmlBytes(const QByteArray& bytes) {
    return htmlText(toReadable(bytes));
}

} // namespace larkspur
