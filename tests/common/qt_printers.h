#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <ostream>

// Readable failure messages: control characters shown as <hex>.
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"';
    for (QChar c : s) {
        if (c.unicode() < 32 || c.unicode() > 126)
            *os << "<" << std::hex << int(c.unicode()) << std::dec << ">";
        else
            *os << char(c.unicode());
    }
    *os << '"';
}
inline void PrintTo(const QByteArray& b, std::ostream* os) {
    PrintTo(QString::fromLatin1(b), os);
}
inline void PrintTo(const QStringList& l, std::ostream* os) {
    *os << "{";
    for (const QString& s : l) {
        *os << "\n  ";
        PrintTo(s, os);
    }
    *os << " }";
}
inline std::ostream& operator<<(std::ostream& os, const QString& s) {
    PrintTo(s, &os);
    return os;
}
