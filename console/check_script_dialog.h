#pragma once

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;
class QTableWidget;

namespace larkspur {

struct ScriptCheck;

// File > Check Script...: every command the runner will reach in a script, with its fields and
// their columns and what it drives, rows with a warning marked, and what the check found; with
// a button that runs the script.
class CheckScriptDialog : public QDialog {
    Q_OBJECT
public:
    explicit CheckScriptDialog(QWidget* parent = nullptr);

    // Shows the check of the script in `path`.
    void showCheck(const QString& path, const ScriptCheck& check);
    // Whether the script can be run now (as Run Script can).
    void setRunEnabled(bool enabled);

Q_SIGNALS:
    // The operator asked to run the checked script.
    void runRequested(const QString& path);

private:
    QLabel* m_summary;
    QTableWidget* m_table;
    QListWidget* m_findings;
    QPushButton* m_run;
    QString m_path;
};

} // namespace larkspur
