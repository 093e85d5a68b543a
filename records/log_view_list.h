#pragma once

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>
#include <QStringView>

namespace larkspur {

// The entries of the log viewer: Latin-1 bytes in one arena and one array of offsets, so a
// million lines cost little more than their text. Each entry lies in the arena followed by the
// two characters that ended it (the CR LF of a logged text, the line end of a log file); the
// traffic log's text is those same bytes. So the arena only grows: clearing the list forgets
// its entries, not their bytes.
class LogViewList {
public:
    qsizetype size() const { return m_ends.size(); }
    QLatin1StringView entry(qsizetype index) const;
    // How much of a logged text its entry holds: all but the last two characters, its CR LF.
    static qsizetype entryLength(qsizetype loggedLength) {
        return qMax<qsizetype>(0, loggedLength - 2);
    }
    // A line of a log file; a character past U+00FF is kept as '?'.
    void append(QStringView entry);
    // A cleaned, logged text: its entry is the text without its last two characters. Returns
    // where the text begins in the arena.
    qsizetype appendLogged(QStringView text);
    void clear();

    // Arena bytes from `begin` to `end`.
    QLatin1StringView arena(qsizetype begin, qsizetype end) const;

private:
    void appendBytes(QStringView text);

    QByteArray m_arena;
    // Where the first entry begins; everything before it was cleared.
    qsizetype m_start = 0;
    // Where each entry ends, with the two characters after it.
    QList<qsizetype> m_ends;
};

} // namespace larkspur
