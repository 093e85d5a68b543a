#pragma once

#include "console/line_list_model.h"
#include "console/line_view.h"
#include "console/traffic_lines.h"
#include "records/traffic_log.h"

namespace larkspur {

// The traffic log on the main window (List1): every logged text lands at its end and the view
// follows the newest line.
class TrafficView : public LineView, public TrafficDisplay {
    Q_OBJECT
public:
    explicit TrafficView(QWidget* parent = nullptr);

    void insertAtEnd(const QString& text, bool replaceLastCharacter) override;
    void clear() override;

private:
    TrafficLines m_lines;
    LineListModel m_model{m_lines};
};

} // namespace larkspur
