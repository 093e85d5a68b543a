#include "console/traffic_view.h"

namespace larkspur {

TrafficView::TrafficView(QWidget* parent) : LineView(parent) {
    setLineModel(&m_model);
}

void TrafficView::insertAtEnd(const QString& text, bool replaceLastCharacter) {
    m_lines.insertAtEnd(text, replaceLastCharacter);
    scheduleSync();
}

void TrafficView::clear() {
    m_lines.clear();
    m_model.reset();
}

} // namespace larkspur
