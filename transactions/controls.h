#pragma once

#include "core/control.h"

#include <QList>
#include <QObject>
#include <QString>

#include <initializer_list>
#include <vector>

namespace larkspur {

// What the window shows of one control (button, check box, label, frame, list, menu entry).
struct ControlState {
    QString caption;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
};

// The captions, enabling, visibility and ticks of every control. The engine sets them by the
// console's rules; the window only mirrors them.
class Controls : public QObject {
    Q_OBJECT
public:
    Controls();

    const ControlState& state(Control control) const { return m_states[size_t(control)]; }

    void setCaption(Control control, const QString& caption);
    void setEnabled(Control control, bool enabled);
    void setVisible(Control control, bool visible);
    void setChecked(Control control, bool checked);
    void setEnabled(const QList<Control>& controls, bool enabled);
    void setVisible(const QList<Control>& controls, bool visible);

Q_SIGNALS:
    void changed(larkspur::Control control);

private:
    // Sets one property of a control and announces it when it changed.
    template <typename T> void update(Control control, T ControlState::*property, T value);

    std::vector<ControlState> m_states;
};

// The sixteen hotel transaction buttons, the linked-suite buttons and the manual link buttons.
const QList<Control>& transactionButtons();
const QList<Control>& linkedSuiteButtons();
const QList<Control>& manualLinkButtons();

} // namespace larkspur
