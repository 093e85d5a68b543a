#include "console/comm_port_dialog.h"

#include "console/dialog_buttons.h"

#include "transactions/session.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLocale>
#include <QPushButton>
#include <QSerialPortInfo>

namespace larkspur {

namespace {
// Port numbers, then the devices the system reports (a pty is not among them; its path can be
// typed).
QStringList portEntries() {
    QStringList entries = {QStringLiteral("1"), QStringLiteral("2")};
    QStringList devices;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        devices.append(port.systemLocation());
    devices.sort();
    return entries + devices;
}
} // namespace

CommPortDialog::CommPortDialog(Session& session, QWidget* parent)
    : QDialog(parent), m_session(session) {
    setObjectName(QStringLiteral("dlgCommPort"));
    setWindowTitle(QStringLiteral("Comm Port Options"));
    m_form = new QFormLayout(this);

    m_port = addList("cmb_port", QStringLiteral("Comm Port:"), portEntries());
    m_parity = addList("cmb_parity", QStringLiteral("Parity:"), {"E", "M", "N", "O", "S"});
    m_speed = addList("cmb_speed", QStringLiteral("Speed:"),
                      {"300", "1200", "2400", "4800", "9600", "14400"});
    m_dataBits = addList("cmb_databit", QStringLiteral("Data Bit:"), {"4", "5", "6", "7", "8"});
    const QString oneAndHalf = QStringLiteral("1") + QLocale().decimalPoint() + u'5';
    m_stopBits = addList("cmb_stopbit", QStringLiteral("Stop Bit:"), {"1", oneAndHalf, "2"});
    m_handShake = addList("cmb_handshake", QStringLiteral("Handshake:"),
                          {"comNone", "comXOnXoff", "comRTS", "comRTSXOnXOff"});

    QDialogButtonBox* buttons = okCancelButtons(this, [this] { ok(); });
    m_form->addRow(buttons);
}

QComboBox* CommPortDialog::addList(const char* name, const QString& label,
                                   const QStringList& entries) {
    auto* list = new QComboBox(this);
    list->setObjectName(QLatin1String(name));
    list->setEditable(true);
    list->setInsertPolicy(QComboBox::NoInsert);
    list->addItems(entries);
    list->setMinimumContentsLength(12);
    m_form->addRow(label, list);
    return list;
}

void CommPortDialog::load() {
    const LinkSettings& s = m_session.link().settings();
    if (s.commPortNumber.isEmpty())
        return;
    m_port->setCurrentText(s.commPortNumber);
    m_parity->setCurrentText(s.parity);
    m_speed->setCurrentText(s.speed);
    m_dataBits->setCurrentText(s.dataBits);
    m_stopBits->setCurrentText(s.stopBits);
    m_handShake->setCurrentText(s.handShake);
}

void CommPortDialog::ok() {
    m_session.changeLinkSettings([this](LinkSettings& s) {
        s.useTcp = false;
        s.commPortNumber = m_port->currentText();
        s.parity = m_parity->currentText();
        s.speed = m_speed->currentText();
        s.dataBits = m_dataBits->currentText();
        s.stopBits = m_stopBits->currentText();
        s.handShake = m_handShake->currentText();
    });
    accept();
}

} // namespace larkspur
