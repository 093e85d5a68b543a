#include "console/about_dialog.h"

#include "console/system_info.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>

namespace larkspur {

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Larkspur"));

    auto* title = new QLabel(QStringLiteral("Larkspur"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    title->setFont(big);
    auto* version =
        new QLabel(QStringLiteral("Version %1").arg(QStringLiteral(LARKSPUR_VERSION)), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto* description = new QLabel(
        QStringLiteral("Test console for the PMS interface of hotel PBXs.\nBuilt with Qt %1.")
            .arg(QStringLiteral(QT_VERSION_STR)),
        this);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("cmdOK"));
    QPushButton* info =
        buttons->addButton(QStringLiteral("&System Info..."), QDialogButtonBox::ActionRole);
    info->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(info, &QPushButton::clicked, this, &AboutDialog::showSystemInfo);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(version);
    layout->addWidget(description);
    layout->addSpacing(12);
    layout->addWidget(buttons);
}

void AboutDialog::showSystemInfo() {
    const QString tool = firstInstalledTool(systemInfoTools());
    if (!tool.isEmpty() && QProcess::startDetached(tool, {}))
        return;
    QMessageBox box(QMessageBox::Information, QStringLiteral("System Info"), systemDetails(),
                    QMessageBox::Ok, this);
    box.exec();
}

} // namespace larkspur
