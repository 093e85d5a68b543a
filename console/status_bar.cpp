#include "console/status_bar.h"

#include "link/link.h"

#include <QLabel>

namespace larkspur {

ConsoleStatusBar::ConsoleStatusBar(const Link& link, QWidget* parent)
    : QStatusBar(parent), m_link(link), m_linkLabel(new QLabel(this)),
      m_warningLabel(new QLabel(this)), m_modeLabel(new QLabel(this)) {
    setObjectName(QStringLiteral("statusBar"));
    m_linkLabel->setObjectName(QStringLiteral("lbl_link_status"));
    m_warningLabel->setObjectName(QStringLiteral("lbl_link_warning"));
    m_modeLabel->setObjectName(QStringLiteral("lbl_mode_status"));
    addWidget(m_linkLabel);
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

void ConsoleStatusBar::refresh() {
    m_linkLabel->setText(linkStatusText(m_link.settings(), m_state, m_reason));
    m_modeLabel->setText(modeStatusText(m_link.pmsMode(), m_link.protocolType()));
}

} // namespace larkspur
