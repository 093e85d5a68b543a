#pragma once

#include <QString>

namespace larkspur {

// What the engine asks of the person at the console: modal notices and file choices. The window
// shows dialogs, the headless player prints and never waits, the tests record.
class OperatorInterface {
public:
    virtual ~OperatorInterface() = default;

    // A modal notice with a fixed text, no title and an OK button.
    virtual void notify(const QString& text) = 0;

    // A file to read or to write, chosen with `filter` ("Text files (*.txt)"); empty when the
    // operator cancels.
    virtual QString chooseFileToOpen(const QString& filter) = 0;
    virtual QString chooseFileToSave(const QString& filter) = 0;
};

} // namespace larkspur
