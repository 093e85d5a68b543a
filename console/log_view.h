#pragma once

#include "console/line_list_model.h"
#include "console/line_source.h"

#include <QDialog>

namespace larkspur {

class LineView;
class LogViewList;

// The log viewer window: every logged line as one entry, and those read from log files.
// Closing it only hides it, so the list survives.
class LogView : public QDialog {
    Q_OBJECT
public:
    LogView(const LogViewList& list, QWidget* parent = nullptr);

    // New entries were added; shown at once while the window is open.
    void entriesAdded();
    // The list was emptied.
    void entriesCleared();

protected:
    void showEvent(QShowEvent* event) override;

private:
    class Source : public LineSource {
    public:
        explicit Source(const LogViewList& list) : m_list(list) {}
        qsizetype lineCount() const override;
        QString line(qsizetype index) const override;

    private:
        const LogViewList& m_list;
    };

    Source m_source;
    LineListModel m_model{m_source};
    LineView* m_view;
};

} // namespace larkspur
