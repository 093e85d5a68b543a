#pragma once

#include "transactions/control_rules.h"

#include <QHash>
#include <QObject>

namespace larkspur {

// The object name a control's widget, action or menu carries: the control's name, with the
// element of a control array written with an underscore ("label_wait(1)" -> "label_wait_1").
QString objectNameOf(const QString& controlName);

class Session;

// Shows the session's state on the window: caption, enabling, visibility and tick of every
// control, as the control rules make them of the state, by name, whatever kind of widget, menu
// entry or menu shows it. Only what changed is set, so a state the operator gave a widget (a
// ticked check box) is not overwritten by an unrelated change of the same control.
class ControlBinder : public QObject {
    Q_OBJECT
public:
    ControlBinder(Session& session, QObject* parent = nullptr);

    // Names `object` after the control and shows its state from now on. A name that is no
    // control stops the program: it is a mistake in the window's code, never the operator's.
    void bind(const QString& name, QObject* object);
    QObject* object(const QString& name) const { return m_objects.value(control(name)); }
    template <typename T> T* get(const QString& name) const {
        return qobject_cast<T*>(object(name));
    }

    // Shows the state of a control in full again, e.g. after Qt ticked a menu entry by itself.
    void refresh(Control control);
    // What the window shows of `control` now.
    const ControlState& state(Control control) const { return m_states[size_t(control)]; }

    // The control named `name`.
    static Control control(const QString& name);

Q_SIGNALS:
    // Controls changed what they show.
    void changed();

private:
    void show(Control control, bool everything);

    std::vector<ControlState> m_states;
    QHash<Control, QObject*> m_objects;
    QHash<Control, ControlState> m_shown;
};

} // namespace larkspur
