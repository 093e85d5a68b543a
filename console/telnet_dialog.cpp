#include "console/telnet_dialog.h"

#include "console/dialog_buttons.h"
#include "console/ip_control.h"
#include "core/operator_interface.h"
#include "transactions/session.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace larkspur {

namespace {
const QString designPort = QStringLiteral("15374");
}

TelnetDialog::TelnetDialog(Session& session, QWidget* parent)
    : QDialog(parent), m_session(session), m_address(new IPControl(this)),
      m_port(new QLineEdit(designPort, this)) {
    setObjectName(QStringLiteral("dlgTelnet"));
    setWindowTitle(QStringLiteral("Telnet"));
    m_address->setObjectName(QStringLiteral("IPControl1"));
    m_port->setObjectName(QStringLiteral("Port"));
    m_port->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 12);

    QDialogButtonBox* buttons = okCancelButtons(this, [this] { ok(); });

    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("PBX Ip Address:"), m_address);
    form->addRow(QStringLiteral("Port"), m_port);
    form->addRow(buttons);
}

void TelnetDialog::load() {
    const LinkSettings& s = m_session.link().settings();
    m_address->ClearAddress();
    if (s.telnetPort.trimmed().toInt() == 0) {
        m_port->setText(designPort);
        return;
    }
    m_port->setText(s.telnetPort);
    const QString error = m_address->setAddress(s.ipAddress);
    if (!error.isEmpty())
        m_session.operatorInterface().notify(
            QStringLiteral("The stored PBX address cannot be shown: %1").arg(error));
}

void TelnetDialog::ok() {
    m_session.changeLinkSettings([this](LinkSettings& s) {
        s.useTcp = true;
        s.ipAddress = m_address->Address();
        s.telnetPort = m_port->text();
    });
    accept();
}

} // namespace larkspur
