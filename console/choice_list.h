#pragma once

#include <QComboBox>

namespace larkspur {

// A drop-down list whose choice starts an operation (a restriction sent, a wait begun): it acts
// only when the operator chooses. The wheel follows the focus: turned over the list while the
// list does not have the focus, it passes to what lies behind (the panel scrolls) and chooses
// nothing; nor does it give the list the focus.
class ChoiceList : public QComboBox {
    Q_OBJECT
public:
    explicit ChoiceList(QWidget* parent = nullptr);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace larkspur
