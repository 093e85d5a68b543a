#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

namespace larkspur {

// What the window shows of one control (button, check box, label, frame, list, menu entry).
struct ControlState {
    QString caption;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
};

// The captions, enabling, visibility and ticks of every control, keyed by the control's name
// ("cmd_chk_in", "mnuTelnet"; an element of a control array as "label_wait(1)"). The engine
// sets them by the console's rules; the window only mirrors them.
class Controls : public QObject {
    Q_OBJECT
public:
    Controls();

    const ControlState& state(const QString& name) const;
    QStringList names() const { return m_order; }

    void setCaption(const QString& name, const QString& caption);
    void setEnabled(const QString& name, bool enabled);
    void setVisible(const QString& name, bool visible);
    void setChecked(const QString& name, bool checked);
    void setEnabled(const QStringList& names, bool enabled);
    void setVisible(const QStringList& names, bool visible);

Q_SIGNALS:
    void changed(const QString& name);

private:
    // Sets one property of a control and announces it when it changed.
    template <typename T> void update(const QString& name, T ControlState::*property, T value);

    QHash<QString, ControlState> m_states;
    QStringList m_order;
};

// The sixteen hotel transaction buttons, the linked-suite buttons and the manual link buttons.
const QStringList& transactionButtons();
const QStringList& linkedSuiteButtons();
const QStringList& manualLinkButtons();

} // namespace larkspur
