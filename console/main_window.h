#pragma once

#include "console/control_binder.h"
#include "console/field_binder.h"
#include "console/operation_runner.h"

#include <QMainWindow>

#include <functional>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QSettings;
class QSplitter;

namespace larkspur {

class AboutDialog;
class CheckScriptDialog;
class CommPortDialog;
class ConsoleStatusBar;
class LogView;
class ReportSaver;
class RunStatisticsDialog;
class Assembly;
class ScriptEngine;
class Session;
class TelnetDialog;
class TrafficView;
class WireTracePanel;

// The console's main window (PMS_FORM). It shows the session and starts its operations; the
// rules of what is shown, enabled and sent are the session's and the script engine's.
//
// Every control's widget, menu entry or menu is named after the control (objectName); an
// element of a control array takes an underscore instead of brackets: "label_wait_1".
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Reads the link settings from `settings` and writes them back when the window closes.
    MainWindow(Assembly& console, QSettings& settings, QWidget* parent = nullptr);
    ~MainWindow() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Widgets bound to their control.
    QPushButton* button(const char* name);
    QCheckBox* checkBox(const char* name);
    QLabel* label(const char* name);
    QComboBox* list(const char* name, const QStringList& entries);
    QGroupBox* frame(const char* name);
    QLineEdit* field(Field field, int maxLength);
    QMenu* menu(const char* name, QWidget* parent);
    QAction* menuEntry(const char* name, QMenu* menu, bool checkable);

    // Layout (main_window_layout.cpp).
    void buildMenus();
    QWidget* buildControlPanel();
    QWidget* buildLinkGroup();
    QWidget* buildFieldGroup();
    QWidget* buildTransactionGroup();
    QWidget* buildRoomFeatureGroup();
    QWidget* buildOptionGroup();
    QWidget* buildLogGroup();
    QWidget* buildScriptFrame();
    QWidget* buildLinkedSuiteFrame();
    QWidget* buildManualModeFrame();
    void hideEmptyGroups();
    // The line between the controls and the log, as the operator left it.
    void restoreSplit();
    void saveSplit();

    // The wire trace panel and the run statistics, and the View menu that opens them
    // (main_window_views.cpp).
    void buildViews();
    void buildViewMenu();
    void makeRoomForTrace();

    // What each control starts (main_window_commands.cpp).
    void wireCommands();
    void onClick(const char* name, const std::function<void()>& operation);
    void onCheck(const char* name);
    void onChoose(const char* name, const std::function<void(const QString&)>& operation);
    void onMenu(const char* name, const std::function<void()>& operation);
    void connectLink();
    void showCommPortDialog();
    void showTelnetDialog();
    void showAbout();
    // File > Check Script...: asks for a script and shows its check, from which it can run.
    void checkScript();
    void viewLog();
    void openLog();
    void startNewLog();

    void Form_Load();
    void Form_Unload();
    void whenAllReturned();

    Assembly& m_console;
    Session& m_session;
    ScriptEngine& m_engine;
    QSettings& m_settings;
    OperationRunner m_runner;
    ControlBinder m_controls;
    FieldBinder m_fields;
    QList<QGroupBox*> m_groups;
    QSplitter* m_split = nullptr;
    TrafficView* m_traffic = nullptr;
    LogView* m_logView = nullptr;
    ConsoleStatusBar* m_status = nullptr;
    CommPortDialog* m_commPortDialog = nullptr;
    TelnetDialog* m_telnetDialog = nullptr;
    AboutDialog* m_about = nullptr;
    CheckScriptDialog* m_checkDialog = nullptr;
    // Every byte on the wire and how each exchange fared, beside the traffic log.
    WireTracePanel* m_tracePanel = nullptr;
    RunStatisticsDialog* m_statisticsDialog = nullptr;
    ReportSaver* m_reportSaver = nullptr;
    // A close came while operations were running; it is done once they have returned.
    bool m_closePending = false;
    bool m_unloading = false;
};

} // namespace larkspur
