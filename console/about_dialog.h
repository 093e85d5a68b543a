#pragma once

#include <QDialog>

namespace larkspur {

// The About box: product and version, and a way to the system's details.
class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(QWidget* parent = nullptr);

private:
    // Starts the first installed system-information tool, or lists the details itself.
    void showSystemInfo();
};

} // namespace larkspur
