#pragma once

#include "core/operator_interface.h"

#include <QPointer>
#include <QWidget>

namespace larkspur {

// The operator at the window: notices are message boxes without a title, file choices are the
// file dialogs, which start in the folder chosen last.
class WidgetOperator : public OperatorInterface {
public:
    // The window the dialogs belong to (set once it exists).
    void setWindow(QWidget* window) { m_window = window; }

    void notify(const QString& text) override;
    QString chooseFileToOpen(const QString& filter) override;
    QString chooseFileToSave(const QString& filter) override;

private:
    QString remember(const QString& path);

    QPointer<QWidget> m_window;
    QString m_folder;
};

} // namespace larkspur
