#pragma once

#include "core/operator_interface.h"

#include <QFileDialog>
#include <QPointer>
#include <QWidget>

namespace larkspur {

// The operator at the window: notices are message boxes without a title, file choices are the
// file dialogs, which start in the folder of the file saved or opened last.
class WidgetOperator : public OperatorInterface {
public:
    // The window the dialogs belong to (set once it exists).
    void setWindow(QWidget* window) { m_window = window; }

    void notify(const QString& text) override;
    QString chooseFileToOpen(const QString& filter) override;
    QString chooseFileToSave(const QString& filter) override;

private:
    QString chooseFile(QFileDialog::AcceptMode mode, const QString& filter);

    QPointer<QWidget> m_window;
    QString m_folder;
};

} // namespace larkspur
