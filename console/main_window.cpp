#include "console/main_window.h"

#include "assembly/assembly.h"
#include "console/choice_list.h"
#include "console/log_view.h"
#include "console/report_saver.h"
#include "console/status_bar.h"
#include "console/traffic_view.h"
#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "core/pause.h"
#include "link/settings_store.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStyle>

namespace larkspur {

namespace {
// Room for every control group side by side, cut to the screen's available area with room for
// the window's frame and title bar, so that all of it, the status bar too, opens in sight.
QSize initialSize(const QWidget& window) {
    const QStyle& style = *window.style();
    const int border = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    const QSize frame(2 * border, style.pixelMetric(QStyle::PM_TitleBarHeight) + border);
    return QSize(1280, 820).boundedTo(window.screen()->availableGeometry().size() - frame);
}
} // namespace

MainWindow::MainWindow(Assembly& console, QSettings& settings, QWidget* parent)
    : QMainWindow(parent), m_console(console), m_session(console.session), m_engine(console.engine),
      m_settings(settings), m_controls(console.session), m_fields(console.session.fields()) {
    setObjectName(QStringLiteral("PMS_FORM"));
    setWindowTitle(QStringLiteral("Larkspur"));

    m_traffic = new TrafficView(this);
    m_traffic->setObjectName(QStringLiteral("List1"));
    m_session.log().setDisplay(m_traffic);
    m_logView = new LogView(m_session.log().viewerList(), this);
    connect(m_traffic, &TrafficView::synced, m_logView, &LogView::entriesAdded);

    m_status = new ConsoleStatusBar(m_session.link(), this);
    setStatusBar(m_status);
    buildViews();
    m_reportSaver = new ReportSaver(console, this);
    buildMenus();
    setCentralWidget(buildControlPanel());
    wireCommands();

    connect(&m_controls, &ControlBinder::changed, this, [this] {
        hideEmptyGroups();
        m_status->refresh();
    });
    connect(&m_session.link(), &Link::connecting, this,
            [this] { m_status->setLinkState(LinkState::Connecting); });
    connect(&m_session.link(), &Link::disconnected, this,
            [this] { m_status->setLinkState(LinkState::Closed); });
    connect(&m_session.link(), &Link::linkLost, this,
            [this](const QString& reason) { m_status->setLinkState(LinkState::Lost, reason); });
    connect(&m_session.link(), &Link::linkWarning, m_status, &ConsoleStatusBar::setWarning);
    connect(&m_session.recorder(), &Recording::changed, this, [this] {
        m_status->showRecording(m_session.recorder().recording(), m_session.recorder().lines());
    });
    connect(&m_engine, &ScriptEngine::scriptSaved, m_status, &ConsoleStatusBar::showScriptSaved);
    connect(&m_runner, &OperationRunner::allReturned, this, &MainWindow::whenAllReturned);

    Form_Load();
    hideEmptyGroups();
    resize(initialSize(*this));
    restoreSplit();
}

MainWindow::~MainWindow() {
    m_session.log().setDisplay(nullptr);
}

QPushButton* MainWindow::button(const char* name) {
    auto* b = new QPushButton(this);
    m_controls.bind(QLatin1String(name), b);
    return b;
}

QCheckBox* MainWindow::checkBox(const char* name) {
    auto* c = new QCheckBox(this);
    m_controls.bind(QLatin1String(name), c);
    return c;
}

QLabel* MainWindow::label(const char* name) {
    auto* l = new QLabel(this);
    // Plain text: the captions' leading blanks are part of them.
    l->setTextFormat(Qt::PlainText);
    m_controls.bind(QLatin1String(name), l);
    return l;
}

QComboBox* MainWindow::list(const char* name, const QStringList& entries) {
    auto* c = new ChoiceList(this);
    c->addItems(entries);
    // Nothing chosen until the operator chooses.
    c->setCurrentIndex(-1);
    c->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_controls.bind(QLatin1String(name), c);
    return c;
}

QGroupBox* MainWindow::frame(const char* name) {
    auto* g = new QGroupBox(this);
    m_controls.bind(QLatin1String(name), g);
    return g;
}

QLineEdit* MainWindow::field(Field f, int maxLength) {
    auto* e = new QLineEdit(this);
    if (maxLength > 0)
        e->setMaxLength(maxLength);
    m_controls.bind(fieldName(f), e);
    m_fields.bind(f, e);
    return e;
}

QMenu* MainWindow::menu(const char* name, QWidget* parent) {
    auto* m = new QMenu(parent);
    m_controls.bind(QLatin1String(name), m);
    return m;
}

QAction* MainWindow::menuEntry(const char* name, QMenu* menu, bool checkable) {
    QAction* a = menu->addAction(QString());
    a->setCheckable(checkable);
    m_controls.bind(QLatin1String(name), a);
    return a;
}

void MainWindow::Form_Load() {
    const QString settingsProblem = loadLinkSettings(m_settings, m_session.link());
    if (!settingsProblem.isEmpty())
        m_status->setWarning(settingsProblem);
    m_session.applyModeAndLinkChoice();
    m_status->refresh();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (m_unloading)
        return;
    if (m_runner.depth() > 0) {
        // Operations below us on the stack are waiting in the event loop; they are told to
        // stop and the window closes once the outermost has returned.
        m_closePending = true;
        m_session.pump().requestStop();
        m_engine.cmd_cancel();
        return;
    }
    Form_Unload();
    event->accept();
}

void MainWindow::Form_Unload() {
    m_unloading = true;
    m_runner.refuseNew();
    m_session.pump().clearStop();
    m_session.cmd_disconnect();
    pause_seconds(m_session.pump(), 1.0f);
    saveSplit();
    const QString notSaved = saveLinkSettings(m_settings, m_session.link());
    if (!notSaved.isEmpty())
        m_session.operatorInterface().notify(notSaved);
}

void MainWindow::whenAllReturned() {
    m_status->refresh();
    if (m_closePending && !m_unloading)
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

} // namespace larkspur
