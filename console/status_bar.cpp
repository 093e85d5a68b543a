#include "console/status_bar.h"

#include "link/link.h"

#include <QLabel>

namespace larkspur {

namespace {

QString linesText(int lines) {
    return lines == 1 ? QStringLiteral("1 line") : QStringLiteral("%1 lines").arg(lines);
}

} // namespace

ConsoleStatusBar::ConsoleStatusBar(const Link& link, QWidget* parent)
    : QStatusBar(parent), m_link(link), m_linkLabel(new QLabel(this)),
      m_scriptLabel(new QLabel(this)), m_warningLabel(new QLabel(this)),
      m_modeLabel(new QLabel(this)) {
    setObjectName(QStringLiteral("statusBar"));
    m_linkLabel->setObjectName(QStringLiteral("lbl_link_status"));
    m_scriptLabel->setObjectName(QStringLiteral("lbl_script_status"));
    m_warningLabel->setObjectName(QStringLiteral("lbl_link_warning"));
    m_modeLabel->setObjectName(QStringLiteral("lbl_mode_status"));
    // A long path never widens the window: the label gives way, its tooltip keeps it whole.
    m_scriptLabel->setMinimumWidth(1);
    addWidget(m_linkLabel);
    addWidget(m_scriptLabel);
    addWidget(m_warningLabel, 1);
    addPermanentWidget(m_modeLabel);
    refresh();
}

void ConsoleStatusBar::setLinkState(LinkState state, const QString& reason) {
    m_state = state;
    m_reason = reason;
    if (state == LinkState::Connecting)
        m_warningLabel->clear();
    refresh();
}

void ConsoleStatusBar::setWarning(const QString& text) {
    m_warningLabel->setText(QStringLiteral("\u2014 ") + text);
}

void ConsoleStatusBar::showRecording(bool recording, int lines) {
    const QString text =
        recording ? QStringLiteral("\u2014 Recording: %1").arg(linesText(lines)) : QString();
    m_scriptLabel->setText(text);
    m_scriptLabel->setToolTip(text);
}

void ConsoleStatusBar::showScriptSaved(const QString& path, int lines) {
    const QString text =
        lines == 0 ? QStringLiteral("\u2014 Script saved to %1; it holds no command").arg(path)
                   : QStringLiteral("\u2014 Script saved to %1 (%2); its last command will not "
                                    "be played unless a comment line follows it")
                         .arg(path, linesText(lines));
    m_scriptLabel->setText(text);
    m_scriptLabel->setToolTip(text);
}

void ConsoleStatusBar::refresh() {
    m_linkLabel->setText(linkStatusText(m_link.settings(), m_state, m_reason));
    m_modeLabel->setText(modeStatusText(m_link.pmsMode(), m_link.protocolType()));
}

} // namespace larkspur
