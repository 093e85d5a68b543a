#include "console/dialog_buttons.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace larkspur {

QDialogButtonBox* okCancelButtons(QDialog* dialog, std::function<void()> ok) {
    auto* buttons = new QDialogButtonBox(dialog);
    QPushButton* okButton = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    okButton->setObjectName(QStringLiteral("cmdOK"));
    okButton->setDefault(true);
    QPushButton* cancel =
        buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    QObject::connect(okButton, &QPushButton::clicked, dialog, std::move(ok));
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    return buttons;
}

} // namespace larkspur
