#pragma once

#include "console/link_status.h"

#include <QStatusBar>

class QLabel;

namespace larkspur {

class Link;

// The link (where, and whether it is up), its last warning, and the mode and protocol. It only
// shows; nothing here goes to the traffic log.
class ConsoleStatusBar : public QStatusBar {
    Q_OBJECT
public:
    ConsoleStatusBar(const Link& link, QWidget* parent = nullptr);

    void setLinkState(LinkState state, const QString& reason = QString());
    void setWarning(const QString& text);
    // Shows the settings, mode and protocol as they are now.
    void refresh();

private:
    const Link& m_link;
    LinkState m_state = LinkState::Closed;
    QString m_reason;
    QLabel* m_linkLabel;
    QLabel* m_warningLabel;
    QLabel* m_modeLabel;
};

} // namespace larkspur
