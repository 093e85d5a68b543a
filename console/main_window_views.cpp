// The views beside the traffic log: the wire trace panel and the run statistics dialog, both
// fed from the session's link, and the View menu that opens them.
#include "console/main_window.h"

#include "console/run_statistics_dialog.h"
#include "console/wire_trace_panel.h"
#include "link/event_pump.h"
#include "transactions/session.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace larkspur {

void MainWindow::buildViews() {
    traceLink(m_session.link, m_trace);
    // Whatever was still unanswered when the link went down was never answered.
    const auto finish = [this] { m_trace.finish(m_session.pump.currentDateTime()); };
    connect(&m_session.link, &Link::disconnected, this, finish);
    connect(&m_session.link, &Link::linkLost, this, finish);

    m_statisticsDialog = new RunStatisticsDialog(m_statistics, this);
    connect(&m_trace, &WireTrace::exchangeEnded, this, [this](const ExchangeEvent& event) {
        m_statistics.add(event);
        m_statisticsDialog->statisticsChanged();
    });
    connect(&m_session, &Session::expectationEnded, this,
            [this](const QString& item, bool succeeded, qint64 ms) {
                m_statistics.addWait(item, succeeded, ms);
                m_statisticsDialog->statisticsChanged();
            });

    m_tracePanel = new WireTracePanel(m_trace, m_session.operatorInterface, this);
    addDockWidget(Qt::BottomDockWidgetArea, m_tracePanel);
    m_tracePanel->hide();
}

void MainWindow::buildViewMenu() {
    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->setObjectName(QStringLiteral("mnuView"));
    QAction* trace = m_tracePanel->toggleViewAction();
    trace->setObjectName(QStringLiteral("mnuWireTrace"));
    view->addAction(trace);
    QAction* statistics = view->addAction(tr("Run &Statistics..."), this, [this] {
        m_statisticsDialog->show();
        m_statisticsDialog->raise();
        m_statisticsDialog->activateWindow();
    });
    statistics->setObjectName(QStringLiteral("mnuRunStatistics"));
}

} // namespace larkspur
