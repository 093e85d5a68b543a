#include "transactions/session.h"

namespace larkspur {

Session::Session(EventPump& eventPump, OperatorInterface& op, Transport& tcp, Transport& serial)
    : m_pump(eventPump), m_operator(op), m_link(eventPump, m_log, op, tcp, serial) {
    connect(&m_link, &Link::recordingStopped, this, [this] { m_recorder.suspend(); });
    // A passed connection test makes the transactions live and ends a recording.
    connect(&m_link, &Link::connected, this, [this] {
        m_state.link = ConsoleState::Link::Up;
        m_state.script = ConsoleState::Script::Idle;
        changed();
    });
    // A lost link is a disconnect the operator did not ask for: Connect is there to try again.
    const auto down = [this] {
        m_state.link = ConsoleState::Link::Down;
        changed();
    };
    connect(&m_link, &Link::disconnected, this, down);
    connect(&m_link, &Link::linkLost, this, down);
    m_announced = state();
}

ConsoleState Session::state() const {
    ConsoleState s = m_state;
    s.pmsMode = m_link.pmsMode();
    s.protocolType = m_link.protocolType();
    const LinkSettings& settings = m_link.settings();
    s.useTcp = settings.useTcp;
    s.dtrEnabled = settings.dtrEnabled;
    s.rtsEnabled = settings.rtsEnabled;
    s.nullDiscard = settings.nullDiscard;
    return s;
}

void Session::changed() {
    const ConsoleState now = state();
    if (now == m_announced)
        return;
    m_announced = now;
    Q_EMIT stateChanged(now);
}

void Session::choose(Control control, bool checked) {
    switch (control) {
    case Control::mnuHotel:
        // HOTEL mode always forces the HYATT protocol and greys out HIS.
        m_link.setMode(PmsMode::Hotel, Protocol::Hyatt);
        m_state.menuMode = PmsMode::Hotel;
        m_state.menuProtocol = Protocol::Hyatt;
        m_state.hisChoosable = false;
        break;
    case Control::mnuVoiceMail:
        // The protocol stays as it is.
        m_link.setMode(PmsMode::Vmail, m_link.protocolType());
        m_state.menuMode = PmsMode::Vmail;
        m_state.hisChoosable = true;
        break;
    case Control::mnu_HIS:
    case Control::mnu_Hyatt: {
        const Protocol protocol = control == Control::mnu_HIS ? Protocol::His : Protocol::Hyatt;
        m_link.setMode(m_link.pmsMode(), protocol);
        m_state.menuProtocol = protocol;
        break;
    }
    default:
        if (!chooseBox(control, checked))
            return;
        break;
    }
    changed();
}

bool Session::chooseBox(Control box, bool checked) {
    // The boxes of the console's own options and of the serial line's signals.
    static const std::pair<Control, bool ConsoleState::*> options[] = {
        {Control::chk_error, &ConsoleState::errorMode},
        {Control::chk_linked_suite, &ConsoleState::linkedSuites},
        {Control::chk_manual, &ConsoleState::manualMode},
        {Control::Continuous, &ConsoleState::continuous},
    };
    static const std::pair<Control, bool LinkSettings::*> lineSignals[] = {
        {Control::chk_DTREnabled, &LinkSettings::dtrEnabled},
        {Control::chk_RTSEnabled, &LinkSettings::rtsEnabled},
        {Control::chk_NullDiscard, &LinkSettings::nullDiscard},
    };
    for (const auto& [control, option] : options) {
        if (control == box) {
            m_state.*option = checked;
            return true;
        }
    }
    for (const auto& [control, signal] : lineSignals) {
        if (control == box) {
            m_link.settings().*signal = checked;
            return true;
        }
    }
    return false;
}

void Session::applyModeAndLinkChoice() {
    m_state.menuMode = m_link.pmsMode();
    m_state.menuProtocol = m_link.protocolType();
    changed();
}

void Session::useScriptMode(PmsMode pmsMode, Protocol protocolType) {
    m_link.setMode(pmsMode, protocolType);
    changed();
}

void Session::setScriptControls(ConsoleState::Script script) {
    m_state.script = script;
    changed();
}

void Session::changeLinkSettings(const std::function<void(LinkSettings&)>& change) {
    change(m_link.settings());
    changed();
}

Link::ConnectResult Session::cmd_connect(double connectLimitSeconds) {
    return m_link.cmd_connect(connectLimitSeconds);
}

void Session::cmd_disconnect() {
    m_link.cmd_disconnect();
}

void Session::cmd_clear() {
    m_log.clearDisplay();
}

} // namespace larkspur
