#include "console/choice_list.h"

#include <QWheelEvent>

namespace larkspur {

ChoiceList::ChoiceList(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);
}

void ChoiceList::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) {
        event->ignore();
        return;
    }
    QComboBox::wheelEvent(event);
}

} // namespace larkspur
