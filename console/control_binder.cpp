#include "console/control_binder.h"

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

ControlBinder::ControlBinder(const Controls& controls, QObject* parent)
    : QObject(parent), m_controls(controls) {
    connect(&controls, &Controls::changed, this, [this](const QString& name) {
        if (m_objects.contains(name))
            show(name, false);
    });
}

void ControlBinder::bind(const QString& name, QObject* object) {
    object->setObjectName(objectNameOf(name));
    m_objects.insert(name, object);
    show(name, true);
}

void ControlBinder::refresh(const QString& name) {
    show(name, true);
}

void ControlBinder::show(const QString& name, bool everything) {
    QObject* o = m_objects.value(name);
    const ControlState& s = m_controls.state(name);
    ControlState& shown = m_shown[name];
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
