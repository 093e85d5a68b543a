#include "common/fake_session.h"
#include "common/recording_operator.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "transactions/session.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ConsoleState : public ::testing::Test, protected FakeSession {
protected:
    const ControlState& c(const char* name) { return session.controls.state(*controlNamed(name)); }
};

TEST_F(ConsoleState, ModesRelabelAndHide) {
    session.mnuVoiceMail_Click();
    EXPECT_EQ(session.link().pmsMode(), PmsMode::Vmail);
    EXPECT_EQ(c("cmd_name_1").caption, "Query MW Status");
    EXPECT_EQ(c("Label5").caption, "Passcode: ");
    EXPECT_EQ(c("Label9").caption, "Unread");
    for (const char* hidden : {"cmd_loc", "cmd_wakeup", "cmb_restrict", "cmb_wait", "Text1",
                               "txt_time", "Credit_label", "chk_DTREnabled", "lbl_department(0)"})
        EXPECT_FALSE(c(hidden).visible) << hidden;
    EXPECT_TRUE(c("lbl_department(1)").visible) << "the second label is never touched";
    EXPECT_TRUE(c("txt_suite_4").visible);

    session.mnuHotel_Click();
    EXPECT_EQ(c("cmd_name_1").caption, "Add Name");
    EXPECT_EQ(c("Label6").caption, "xfer ext./Suite Pilot 2:") << "not the first caption";
    EXPECT_TRUE(c("cmd_loc").visible);
    EXPECT_TRUE(c("Text1").visible);
}

TEST_F(ConsoleState, HotelForcesHyattAndGreysHis) {
    session.mnuVoiceMail_Click();
    session.mnu_HIS_Click();
    EXPECT_EQ(session.link().protocolType(), Protocol::His);
    session.mnuHotel_Click();
    EXPECT_EQ(session.link().protocolType(), Protocol::Hyatt);
    EXPECT_FALSE(c("mnu_HIS").enabled);
    EXPECT_FALSE(c("mnu_HIS").checked);
    EXPECT_TRUE(c("mnu_Hyatt").checked);
    session.mnuVoiceMail_Click();
    EXPECT_TRUE(c("mnu_HIS").enabled);
    EXPECT_TRUE(c("mnu_Hyatt").checked) << "voice mail leaves the protocol as it is";
    EXPECT_EQ(session.link().protocolType(), Protocol::Hyatt);
}

TEST_F(ConsoleState, ConnectingEnablesAllButTheScriptEndButtons) {
    session.disable_transaction_controls();
    for (const char* name : {"cmd_chk_in", "cmd_ste0", "cmd_ack", "Xtest", "cmd_end_script",
                             "StopScript", "cmd_start_script"})
        EXPECT_FALSE(c(name).enabled) << name;
    EXPECT_TRUE(c("mnuPMS").enabled);

    EXPECT_EQ(session.cmd_connect(), Link::ConnectResult::NoResponse) << "nobody answers the fake";
    tcp.onWrite = [&](const QByteArray&) { tcp.deliver(QByteArray(1, 6), 10); };
    EXPECT_EQ(session.cmd_connect(), Link::ConnectResult::Connected);
    for (const char* name : {"cmd_chk_in", "cmd_set_credit", "cmd_steB", "cmd_enquiry_basic",
                             "Xtest", "cmd_start_script", "cmd_disconnect"})
        EXPECT_TRUE(c(name).enabled) << name;
    for (const char* name :
         {"cmd_end_script", "StopScript", "mnuPMS", "mnu_protocal", "mnuConnection", "cmd_connect"})
        EXPECT_FALSE(c(name).enabled) << name;

    session.cmd_disconnect();
    EXPECT_FALSE(c("cmd_chk_in").enabled);
    EXPECT_TRUE(c("mnuConnection").enabled);
    EXPECT_TRUE(c("cmd_connect").enabled);
}

TEST_F(ConsoleState, CheckBoxesShowFramesAndSetErrorMode) {
    EXPECT_FALSE(c("fr_Linked_suite").visible);
    EXPECT_FALSE(c("fr_manual_mode").visible);
    session.chk_linked_suite_Click(true);
    session.chk_manual_Click(true);
    session.chk_error_Click(true);
    EXPECT_TRUE(c("fr_Linked_suite").visible);
    EXPECT_TRUE(c("fr_manual_mode").visible);
    EXPECT_TRUE(session.errorMode());
    session.chk_manual_Click(false);
    session.chk_error_Click(false);
    EXPECT_FALSE(c("fr_manual_mode").visible);
    EXPECT_FALSE(session.errorMode());
}

} // namespace
