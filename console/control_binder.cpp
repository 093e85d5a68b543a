#include "console/control_binder.h"

#include "transactions/session.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>

namespace larkspur {

namespace {

void showCaption(QObject* o, const QString& caption) {
    if (auto* menu = qobject_cast<QMenu*>(o))
        menu->setTitle(caption);
    else if (auto* button = qobject_cast<QAbstractButton*>(o))
        button->setText(caption);
    else if (auto* label = qobject_cast<QLabel*>(o))
        label->setText(caption);
    else if (auto* frame = qobject_cast<QGroupBox*>(o))
        frame->setTitle(caption);
    else if (auto* action = qobject_cast<QAction*>(o))
        action->setText(caption);
}

// A menu is enabled and shown through its entry in the parent menu or the menu bar, so that a
// disabled menu cannot even be opened.
void showEnabled(QObject* o, bool enabled) {
    if (auto* menu = qobject_cast<QMenu*>(o))
        menu->menuAction()->setEnabled(enabled);
    else if (auto* widget = qobject_cast<QWidget*>(o))
        widget->setEnabled(enabled);
    else if (auto* action = qobject_cast<QAction*>(o))
        action->setEnabled(enabled);
}

void showVisible(QObject* o, bool visible) {
    if (auto* menu = qobject_cast<QMenu*>(o))
        menu->menuAction()->setVisible(visible);
    else if (auto* widget = qobject_cast<QWidget*>(o))
        widget->setVisible(visible);
    else if (auto* action = qobject_cast<QAction*>(o))
        action->setVisible(visible);
}

void showChecked(QObject* o, bool checked) {
    if (auto* button = qobject_cast<QAbstractButton*>(o); button && button->isCheckable())
        button->setChecked(checked);
    else if (auto* action = qobject_cast<QAction*>(o); action && action->isCheckable())
        action->setChecked(checked);
}

// Input fields and lists have no caption of their own.
bool hasCaption(QObject* o) {
    return qobject_cast<QMenu*>(o) || qobject_cast<QAbstractButton*>(o) ||
           qobject_cast<QLabel*>(o) || qobject_cast<QGroupBox*>(o) || qobject_cast<QAction*>(o);
}

} // namespace

QString objectNameOf(const QString& controlName) {
    static const QRegularExpression element(QStringLiteral("\\((\\d+)\\)$"));
    QString name = controlName;
    return name.replace(element, QStringLiteral("_\\1"));
}

ControlBinder::ControlBinder(Session& session, QObject* parent)
    : QObject(parent), m_states(controlStates(session.state())) {
    connect(&session, &Session::stateChanged, this, [this](const ConsoleState& state) {
        m_states = controlStates(state);
        for (auto it = m_objects.cbegin(); it != m_objects.cend(); ++it)
            show(it.key(), false);
        Q_EMIT changed();
    });
}

Control ControlBinder::control(const QString& name) {
    const std::optional<Control> control = controlNamed(name);
    if (!control)
        qFatal("the window names a control it does not have: %s", qPrintable(name));
    return *control;
}

void ControlBinder::bind(const QString& name, QObject* object) {
    const Control bound = control(name);
    object->setObjectName(objectNameOf(name));
    m_objects.insert(bound, object);
    show(bound, true);
}

void ControlBinder::refresh(Control control) {
    show(control, true);
}

void ControlBinder::show(Control control, bool everything) {
    QObject* o = m_objects.value(control);
    const ControlState& s = state(control);
    ControlState& shown = m_shown[control];
    if ((everything || s.caption != shown.caption) && hasCaption(o))
        showCaption(o, s.caption);
    if (everything || s.enabled != shown.enabled)
        showEnabled(o, s.enabled);
    if (everything || s.visible != shown.visible)
        showVisible(o, s.visible);
    if (everything || s.checked != shown.checked)
        showChecked(o, s.checked);
    shown = s;
}

} // namespace larkspur
