#pragma once

#include "console/link_status.h"

#include <QStatusBar>

class QLabel;

namespace larkspur {

class Link;

// The link (where, and whether it is up), the script being recorded or the one just saved, the
// last warning, and the mode and protocol. It only shows; nothing here goes to the traffic log.
class ConsoleStatusBar : public QStatusBar {
    Q_OBJECT
public:
    ConsoleStatusBar(const Link& link, QWidget* parent = nullptr);

    void setLinkState(LinkState state, const QString& reason = QString());
    void setWarning(const QString& text);
    // While recording, that it records and how many lines so far; nothing once it stopped.
    void showRecording(bool recording, int lines);
    // Where the recording went, and what the operator must know about playing it.
    void showScriptSaved(const QString& path, int lines);
    // Shows the settings, mode and protocol as they are now.
    void refresh();

private:
    const Link& m_link;
    LinkState m_state = LinkState::Closed;
    QString m_reason;
    QLabel* m_linkLabel;
    QLabel* m_scriptLabel;
    QLabel* m_warningLabel;
    QLabel* m_modeLabel;
};

} // namespace larkspur
