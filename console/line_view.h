#pragma once

#include <QTableView>
#include <QTimer>

namespace larkspur {

class LineListModel;

// A read-only, monospace view of many lines. A one-column table with fixed row heights costs
// the same per update at a million rows as at a thousand (a list view lays out every row again
// on each insert). Lines are selectable; Ctrl+C copies the selected lines.
class LineView : public QTableView {
    Q_OBJECT
public:
    explicit LineView(QWidget* parent = nullptr);

    void setLineModel(LineListModel* model);

    // New lines are shown together a moment later, so a burst costs one update.
    void scheduleSync();
    // Shows whatever is pending now and scrolls to the newest line.
    void syncNow();

    // The selected lines, top to bottom, joined by line feeds.
    QString selectedText() const;

Q_SIGNALS:
    void synced();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void copySelection();
    void fitColumn();

    LineListModel* m_model = nullptr;
    QTimer m_syncTimer;
};

} // namespace larkspur
