#pragma once

#include <QDialog>
#include <QTimer>

class QTableWidget;

namespace larkspur {

class RunStatistics;

// How each message type fared this run: sent, acknowledged, refused, timed out and the answer
// times. It stays open beside the window and follows the statistics as they grow.
class RunStatisticsDialog : public QDialog {
    Q_OBJECT
public:
    RunStatisticsDialog(RunStatistics& statistics, QWidget* parent = nullptr);

    // The statistics grew; shown a moment later while the dialog is open.
    void statisticsChanged();
    // Shows the statistics as they are now.
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;

private:
    // Reset asks first, the safe answer the default.
    void askToReset();

    RunStatistics& m_statistics;
    QTableWidget* m_table;
    QTimer m_refreshTimer;
};

} // namespace larkspur
