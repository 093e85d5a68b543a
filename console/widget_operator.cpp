#include "console/widget_operator.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace larkspur {

void WidgetOperator::notify(const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, QString(), text, QMessageBox::Ok, m_window);
    box.exec();
}

QString WidgetOperator::chooseFileToOpen(const QString& filter) {
    return remember(QFileDialog::getOpenFileName(m_window, QString(), m_folder, filter));
}

QString WidgetOperator::chooseFileToSave(const QString& filter) {
    return remember(QFileDialog::getSaveFileName(m_window, QString(), m_folder, filter));
}

QString WidgetOperator::remember(const QString& path) {
    if (!path.isEmpty())
        m_folder = QFileInfo(path).absolutePath();
    return path;
}

} // namespace larkspur
