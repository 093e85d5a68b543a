// The window's rules: what each control shows for a state of the console, and how the menus and
// check boxes move that state.
#include "common/fake_session.h"
#include "transactions/control_rules.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

using Link = ConsoleState::Link;
using Script = ConsoleState::Script;

const ControlState& shown(const std::vector<ControlState>& states, const char* name) {
    return states[size_t(*controlNamed(name))];
}

TEST(ControlRules, ModesRelabelAndHide) {
    ConsoleState vmail;
    vmail.pmsMode = PmsMode::Vmail;
    const auto v = controlStates(vmail);
    EXPECT_EQ(shown(v, "cmd_name_1").caption, "Query MW Status");
    EXPECT_EQ(shown(v, "Label5").caption, "Passcode: ");
    EXPECT_EQ(shown(v, "Label9").caption, "Unread");
    for (const char* hidden : {"cmd_loc", "cmd_wakeup", "cmb_restrict", "cmb_wait", "Text1",
                               "txt_time", "Credit_label", "chk_DTREnabled", "lbl_department(0)"})
        EXPECT_FALSE(shown(v, hidden).visible) << hidden;
    EXPECT_TRUE(shown(v, "lbl_department(1)").visible) << "the second label is never touched";
    EXPECT_TRUE(shown(v, "txt_suite_4").visible);

    const auto h = controlStates(ConsoleState{});
    EXPECT_EQ(shown(h, "cmd_name_1").caption, "Add Name");
    EXPECT_EQ(shown(h, "Label6").caption, "xfer ext./Suite Pilot 2:") << "not the first caption";
    EXPECT_TRUE(shown(h, "cmd_loc").visible);
    EXPECT_TRUE(shown(h, "Text1").visible);
}

TEST(ControlRules, EnablingFollowsTheLinkAndTheScript) {
    // On: the controls live in that state; everything else of the list is off.
    const QStringList controls = {"cmd_connect", "cmd_disconnect",   "cmd_chk_in",     "cmd_ste0",
                                  "cmd_ack",     "cmd_start_script", "cmd_end_script", "Xtest",
                                  "StopScript",  "mnuPMS",           "mnuConnection"};
    const struct {
        Link link;
        Script script;
        QStringList on;
    } cases[] = {
        // clang-format off
        {Link::NotOpened, Script::Idle, {"cmd_connect", "cmd_disconnect", "mnuPMS", "mnuConnection"}},
        {Link::Up, Script::Idle, {"cmd_disconnect", "cmd_chk_in", "cmd_ste0", "cmd_ack", "cmd_start_script", "Xtest"}},
        {Link::Up, Script::Recording, {"cmd_disconnect", "cmd_chk_in", "cmd_ste0", "cmd_ack", "cmd_end_script"}},
        {Link::Up, Script::Running, {"cmd_disconnect", "cmd_ste0", "cmd_ack", "StopScript"}},
        {Link::Down, Script::Recording, {"cmd_connect", "mnuPMS", "mnuConnection"}},
        {Link::Down, Script::Running, {"cmd_connect", "mnuPMS", "mnuConnection"}},
        // clang-format on
    };
    for (const auto& c : cases) {
        ConsoleState state;
        state.link = c.link;
        state.script = c.script;
        const auto states = controlStates(state);
        for (const QString& name : controls)
            EXPECT_EQ(shown(states, name.toLatin1().constData()).enabled, c.on.contains(name))
                << int(c.link) << "/" << int(c.script) << ": " << name.toStdString();
    }
}

class ConsoleChoices : public ::testing::Test, protected FakeSession {
protected:
    ControlState c(const char* name) { return shown(controlStates(session.state()), name); }
};

TEST_F(ConsoleChoices, HotelForcesHyattAndGreysHis) {
    session.choose(Control::mnuVoiceMail);
    session.choose(Control::mnu_HIS);
    EXPECT_EQ(session.link().protocolType(), Protocol::His);
    session.choose(Control::mnuHotel);
    EXPECT_EQ(session.link().protocolType(), Protocol::Hyatt);
    EXPECT_FALSE(c("mnu_HIS").enabled);
    EXPECT_FALSE(c("mnu_HIS").checked);
    EXPECT_TRUE(c("mnu_Hyatt").checked);
    session.choose(Control::mnuVoiceMail);
    EXPECT_TRUE(c("mnu_HIS").enabled);
    EXPECT_TRUE(c("mnu_Hyatt").checked) << "voice mail leaves the protocol as it is";
    EXPECT_EQ(session.link().protocolType(), Protocol::Hyatt);
}

TEST_F(ConsoleChoices, AScriptRelabelsWithoutTickingTheMenus) {
    session.useScriptMode(PmsMode::Vmail, Protocol::His);
    EXPECT_EQ(c("cmd_name_1").caption, "Query MW Status");
    EXPECT_TRUE(c("mnuHotel").checked);
    EXPECT_TRUE(c("mnu_Hyatt").checked);
}

TEST_F(ConsoleChoices, ConnectAndDisconnectMoveTheLink) {
    session.choose(Control::mnuVoiceMail); // nothing answers the fake: the test fails
    EXPECT_EQ(session.cmd_connect(), larkspur::Link::ConnectResult::NoResponse);
    EXPECT_EQ(session.state().link, ConsoleState::Link::NotOpened);
    session.choose(Control::mnuHotel);
    tcp.onWrite = [&](const QByteArray&) { tcp.deliver(QByteArray(1, 6), 10); };
    EXPECT_EQ(session.cmd_connect(), larkspur::Link::ConnectResult::Connected);
    EXPECT_EQ(session.state().link, ConsoleState::Link::Up);
    session.cmd_disconnect();
    EXPECT_EQ(session.state().link, ConsoleState::Link::Down);
}

TEST_F(ConsoleChoices, CheckBoxesShowFramesAndSetTheirOptions) {
    EXPECT_FALSE(c("fr_Linked_suite").visible);
    EXPECT_FALSE(c("fr_manual_mode").visible);
    for (Control box : {Control::chk_linked_suite, Control::chk_manual, Control::chk_error,
                        Control::chk_DTREnabled, Control::Continuous})
        session.choose(box, true);
    EXPECT_TRUE(c("fr_Linked_suite").visible);
    EXPECT_TRUE(c("fr_manual_mode").visible);
    EXPECT_TRUE(session.state().errorMode);
    EXPECT_TRUE(session.link().settings().dtrEnabled);
    EXPECT_TRUE(c("Continuous").checked);
    session.choose(Control::chk_manual, false);
    session.choose(Control::chk_error, false);
    EXPECT_FALSE(c("fr_manual_mode").visible);
    EXPECT_FALSE(session.state().errorMode);
}

} // namespace
