#pragma once

#include "console/wire_trace_model.h"

#include <QDockWidget>

class QPushButton;
class QTableView;

namespace larkspur {

class OperatorInterface;
class WireTrace;

// The Wire Trace panel: every transport write and read with its time, direction, readable
// notation, hex and handshake note, beside the traffic log. It only views the trace; Pause
// stops the view following while the trace goes on recording.
class WireTracePanel : public QDockWidget {
    Q_OBJECT
public:
    WireTracePanel(WireTrace& trace, OperatorInterface& op, QWidget* parent = nullptr);

    WireTraceModel& model() { return m_model; }

private:
    void setColumnWidths();
    void saveAsText();

    WireTrace& m_trace;
    OperatorInterface& m_operator;
    WireTraceModel m_model;
    QTableView* m_view;
};

} // namespace larkspur
