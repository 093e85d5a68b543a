#include "transactions/controls.h"

namespace larkspur {

Controls::Controls() {
    for (Control control : allControls())
        m_states.push_back(
            ControlState{initialCaption(control), true, true, initiallyChecked(control)});
    // The two optional frames start hidden.
    m_states[size_t(Control::fr_Linked_suite)].visible = false;
    m_states[size_t(Control::fr_manual_mode)].visible = false;
}

template <typename T> void Controls::update(Control control, T ControlState::*property, T value) {
    T& current = m_states[size_t(control)].*property;
    if (current != value) {
        current = std::move(value);
        Q_EMIT changed(control);
    }
}

void Controls::setCaption(Control control, const QString& caption) {
    update(control, &ControlState::caption, caption);
}

void Controls::setEnabled(Control control, bool enabled) {
    update(control, &ControlState::enabled, enabled);
}

void Controls::setVisible(Control control, bool visible) {
    update(control, &ControlState::visible, visible);
}

void Controls::setChecked(Control control, bool checked) {
    update(control, &ControlState::checked, checked);
}

void Controls::setEnabled(const QList<Control>& controls, bool enabled) {
    for (Control control : controls)
        setEnabled(control, enabled);
}

void Controls::setVisible(const QList<Control>& controls, bool visible) {
    for (Control control : controls)
        setVisible(control, visible);
}

const QList<Control>& transactionButtons() {
    using C = Control;
    static const QList<Control> controls = {
        C::cmd_chk_in,    C::cmd_chk_out,           C::cmd_name_1,
        C::Command6,      C::cmd_replace_name,      C::cmd_xfer_name,
        C::cmd_dept,      C::cmd_department_2,      C::cmd_department_3,
        C::cmd_loc,       C::cmd_location_2,        C::cmd_location_3,
        C::cmd_wakeup,    C::cmd_message_waiting_0, C::cmd_msg_wait,
        C::cmd_set_credit};
    return controls;
}

const QList<Control>& linkedSuiteButtons() {
    using C = Control;
    static const QList<Control> controls = {C::cmd_ste0, C::cmd_ste1, C::cmd_ste2, C::cmd_ste3,
                                            C::cmd_ste4, C::cmd_ste5, C::cmd_ste6, C::cmd_ste7,
                                            C::cmd_ste8, C::cmd_steA, C::cmd_steB};
    return controls;
}

const QList<Control>& manualLinkButtons() {
    using C = Control;
    static const QList<Control> controls = {C::cmd_enquiry_basic, C::cmd_grs, C::cmd_ayt,
                                            C::cmd_nak,           C::cmd_ack, C::cmd_end};
    return controls;
}

} // namespace larkspur
