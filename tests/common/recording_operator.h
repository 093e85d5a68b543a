#pragma once

#include "common/qt_printers.h"
#include "core/operator_interface.h"

#include <QStringList>

#include <functional>

namespace larkspur::test {

// Records every notice and answers file choices from a queue.
class RecordingOperator : public OperatorInterface {
public:
    QStringList notices;
    QStringList filesToOpen;
    QStringList filesToSave;
    QStringList filters;
    // Called with each notice, as the operator reads it (a test lets time pass meanwhile).
    std::function<void(const QString&)> onNotify;

    void notify(const QString& text) override {
        notices.append(text);
        if (onNotify)
            onNotify(text);
    }
    QString chooseFileToOpen(const QString& filter) override {
        filters.append(filter);
        return filesToOpen.isEmpty() ? QString() : filesToOpen.takeFirst();
    }
    QString chooseFileToSave(const QString& filter) override {
        filters.append(filter);
        return filesToSave.isEmpty() ? QString() : filesToSave.takeFirst();
    }
};

} // namespace larkspur::test
