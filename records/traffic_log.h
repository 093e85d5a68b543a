#pragma once

#include "records/log_view_list.h"

#include <QList>
#include <QString>

#include <utility>

namespace larkspur {

// Where the window shows the traffic log. The log only ever inserts at its end; a text that
// began with a backspace takes the place of the last character shown.
class TrafficDisplay {
public:
    virtual ~TrafficDisplay() = default;
    virtual void insertAtEnd(const QString& text, bool replaceLastCharacter) = 0;
    virtual void clear() = 0;
};

// Every line the console logs passes through ShowDebug, which cleans it and hands it to the
// display, the log viewer list and the in-memory log text. The list and the text share their
// bytes.
class TrafficLog {
public:
    // Cleans `text` in place (backspaces, unprintable characters, line ends) and logs it.
    void ShowDebug(QString& text);
    // The usual call: one line, CR LF appended.
    void logLine(const QString& line);

    // Every cleaned text ever logged, in order.
    QString logText() const;
    qsizetype logCaret() const { return m_logCaret; }
    const LogViewList& viewerList() const { return m_viewerList; }
    LogViewList& viewerList() { return m_viewerList; }

    void setDisplay(TrafficDisplay* display) { m_display = display; }
    // Whether the viewer list and the log text keep what is logged (the window's do). A player
    // that streams every line to its files keeps nothing, so a week-long run stays flat.
    void keepHistory(bool keep) { m_keepHistory = keep; }
    // Empties the visible log; the log text and the viewer list keep everything.
    void clearDisplay();

private:
    TrafficDisplay* m_display = nullptr;
    bool m_keepHistory = true;
    LogViewList m_viewerList;
    // Where the log text lies in the viewer list's arena: one stretch, and one more after each
    // log file read into the list.
    QList<std::pair<qsizetype, qsizetype>> m_logSpans;
    // Length of the visible log, so a leading backspace erases its last character.
    qsizetype m_logCaret = 0;
};

} // namespace larkspur
