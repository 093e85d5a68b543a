// The views beside the traffic log: the wire trace panel and the run statistics dialog, and the
// View menu that opens them.
#include "console/main_window.h"

#include "assembly/assembly.h"
#include "console/run_statistics_dialog.h"
#include "console/wire_trace_panel.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>

namespace larkspur {

void MainWindow::buildViews() {
    m_statisticsDialog = new RunStatisticsDialog(m_console.statistics, this);
    connect(&m_console, &Assembly::statisticsChanged, m_statisticsDialog,
            &RunStatisticsDialog::statisticsChanged);
    m_tracePanel = new WireTracePanel(m_console.trace, m_session.operatorInterface(), this);
    addDockWidget(Qt::BottomDockWidgetArea, m_tracePanel);
    m_tracePanel->hide();
}

void MainWindow::buildViewMenu() {
    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->setObjectName(QStringLiteral("mnuView"));
    QAction* trace = m_tracePanel->toggleViewAction();
    trace->setObjectName(QStringLiteral("mnuWireTrace"));
    trace->setText(tr("&Wire Trace"));
    // Only when the operator opens it: the tick also follows the panel when the window shows.
    connect(trace, &QAction::triggered, this, [this](bool shown) {
        if (shown)
            makeRoomForTrace();
    });
    view->addAction(trace);
    QAction* statistics = view->addAction(tr("Run &Statistics..."), this, [this] {
        m_statisticsDialog->show();
        m_statisticsDialog->raise();
        m_statisticsDialog->activateWindow();
    });
    statistics->setObjectName(QStringLiteral("mnuRunStatistics"));
}

void MainWindow::makeRoomForTrace() {
    // The controls leave the docked panel only a few rows: the window grows, as far as the
    // screen allows, so that the panel opens with enough rows to read.
    constexpr int wantedHeight = 320;
    if (m_tracePanel->isFloating() || isMaximized() || isFullScreen())
        return;
    const QWidget* controls = centralWidget();
    const int spare = controls->height() - controls->minimumSizeHint().height();
    const int room = screen()->availableGeometry().bottom() - frameGeometry().bottom();
    const int grow = qBound(0, wantedHeight - spare, qMax(0, room));
    if (grow > 0)
        resize(width(), height() + grow);
    resizeDocks({m_tracePanel}, {wantedHeight}, Qt::Vertical);
}

} // namespace larkspur
