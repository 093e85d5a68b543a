#pragma once

#include <QAbstractTableModel>
#include <QTimer>

namespace larkspur {

class WireTrace;

// A table over the rows a WireTrace keeps. Recording a row only arms a timer; the rows that came
// and the rows the ring dropped meanwhile are announced together a moment later, so a flood of
// traffic costs the view a few updates a second. While paused nothing is announced and the rows
// shown stay where they are; resuming catches up.
class WireTraceModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Direction, Readable, Hex, Note, ColumnCount };

    explicit WireTraceModel(WireTrace& trace, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setPaused(bool paused);
    bool isPaused() const { return m_paused; }

    // Announces what the trace gained and dropped since the last time, at once (unless paused).
    void sync();
    // Empties the trace and the table.
    void clear();

private:
    void schedule();

    WireTrace& m_trace;
    QTimer m_timer;
    bool m_paused = false;
    // Rows are numbered from the first ever recorded: table row 0 is the trace's row number
    // m_firstShown, so the rows shown keep their text while the ring moves on under them.
    qsizetype m_firstShown = 0;
    qsizetype m_shown = 0;
};

} // namespace larkspur
