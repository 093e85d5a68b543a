#include "console/widget_operator.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>

namespace larkspur {

namespace {

// The extension a name filter lists first: "log" for "PMS Log File (*.log)", "txt" for
// "Script files (*.txt *.scr)", none for "All files (*)".
QString firstExtension(const QString& nameFilter) {
    static const QRegularExpression pattern(QStringLiteral("\\*\\.(\\w+)"));
    return pattern.match(nameFilter).captured(1);
}

} // namespace

void WidgetOperator::notify(const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, QString(), text, QMessageBox::Ok, m_window);
    box.exec();
}

QString WidgetOperator::chooseFileToOpen(const QString& filter) {
    return chooseFile(QFileDialog::AcceptOpen, filter);
}

QString WidgetOperator::chooseFileToSave(const QString& filter) {
    return chooseFile(QFileDialog::AcceptSave, filter);
}

QString WidgetOperator::chooseFile(QFileDialog::AcceptMode mode, const QString& filter) {
    QFileDialog dialog(m_window, QString(), m_folder, filter);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile
                                                       : QFileDialog::AnyFile);
    // A name saved without an extension gets the chosen filter's, so that the open dialog, which
    // filters on it, lists the file again.
    dialog.setDefaultSuffix(firstExtension(dialog.selectedNameFilter()));
    QObject::connect(
        &dialog, &QFileDialog::filterSelected, &dialog,
        [&dialog](const QString& chosen) { dialog.setDefaultSuffix(firstExtension(chosen)); });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    const QString path = dialog.selectedFiles().constFirst();
    m_folder = QFileInfo(path).absolutePath();
    return path;
}

} // namespace larkspur
