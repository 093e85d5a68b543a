#include "common/session_fixture.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;
using enum Field;

namespace {

class VoiceMail : public SessionFixture {
protected:
    void SetUp() override {
        SessionFixture::SetUp();
        session.link().setMode(PmsMode::Vmail, session.link().protocolType());
        session.link().setMode(session.link().pmsMode(), Protocol::His);
        pbx.setMode(sim::Mode::Vmail);
    }
    // A frame with its check character written out.
    static QString vmailFrame(const QString& body, char check) {
        return "\x02" + body + "\x03" + QChar(check);
    }
};

TEST_F(VoiceMail, EachButtonSendsItsOperation) {
    struct Case {
        Action action;
        QString protocol;
        FieldTexts fields;
        QString body;
        char check;
        QString logLine;
    } cases[] = {
        // clang-format off
        {Control::cmd_chk_in, "HIS", {}, "24001  ", '4', "CHECK IN: 4001"},
        {Control::cmd_chk_in, "HYATT", {}, "24001        ", '4', "CHECK IN: 4001"},
        {Control::cmd_chk_out, "HIS", {}, "34001  ", '5', "CHECK OUT: 4001"},
        {Control::cmd_name_1, "HIS", {}, "64001  ", '0', "QUERY MW STATUS: 4001"},
        {Control::Command6, "HIS", {{txt_suite_2, "4002"}}, "74001  4002  ", '7', "MOVE MAILBOX: 4001 TO: 4002"},
        {Control::cmd_replace_name, "HIS", {{txt_department, "3"}}, "94001  3 ", ',', "TEXT MESSAGE MW: 4001 Unread: 3"},
        {Control::cmd_xfer_name, "HIS", {{txt_suite_1, "1234"}}, "A4001  1234  ", 'C', "CHECK IN (Passwd): 4001 PASSCODE: 1234"},
        {Control::cmd_dept, "HIS", {{txt_suite_1, "99"}}, "B4001  99    ", 'D', "CHANGE PASSCODE: 4001 PASSCODE: 99"},
        {Control::cmd_department_2, "HIS", {{txt_suite_3, "12345"}}, "D4001  12345 ", 'S', "CHANGE ID: 4001 ID: 12345"},
        {Control::cmd_department_3, "HIS", {{txt_suite_4, "7"}}, "84001  7 ", ')', "MODIFY FCOS: 4001 FCOS: 7"},
        // clang-format on
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.logLine.toStdString());
        restart();
        session.link().setMode(session.link().pmsMode(), *protocolNamed(c.protocol));
        const qint64 start = pump.elapsedMs();
        const QString lastBefore = session.lastVmailMessage();
        click(c.fields + FieldTexts{{txt_ls_pilot, "4001"}}, c.action);
        const QString sent = vmailFrame(c.body, c.check);
        const bool checkIn = c.action == Control::cmd_chk_in;
        EXPECT_EQ(tcp.written, QList<QByteArray>{sent.toLatin1()});
        // The receiver reports the ACK itself; all but the check-in report it again.
        EXPECT_EQ(lines(), QStringList({c.logLine, "PBX ACKed"}) +
                               (checkIn ? QStringList() : QStringList{"PBX ACKed"}));
        EXPECT_EQ(pump.elapsedMs() - start, 2000);
        EXPECT_EQ(session.lastVmailMessage(), checkIn ? lastBefore : sent);
        EXPECT_EQ(session.recorder().scriptText(), sent + "~\r\n");
    }
}

TEST_F(VoiceMail, UnacknowledgedFrameIsReportedAndStillRecorded) {
    pbx.options.onFrame = Answer::Silent;
    click({{txt_ls_pilot, "4001"}}, Control::cmd_chk_out);
    EXPECT_EQ(lines(), QStringList({"CHECK OUT: 4001", "DID NOT RECEIVE ACK FROM PBX!"}));
    EXPECT_EQ(tcp.written.size(), 1) << "never retried";
    EXPECT_EQ(session.recorder().scriptText(), vmailFrame("34001  ", '5') + "~\r\n");
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_TRUE(session.errors().errorReport().isEmpty());
}

TEST_F(VoiceMail, OverlongFieldsAreCutInTheirTextBoxes) {
    QSignalSpy changes(&session.fields(), &Fields::changed);
    click({{txt_ls_pilot, "4001234"}, {txt_suite_4, "123"}}, Control::cmd_department_3);
    EXPECT_EQ(session.fields().text(txt_ls_pilot), "400123");
    EXPECT_EQ(session.fields().text(txt_suite_4), "12");
    EXPECT_EQ(changes.size(), 4) << "two typed, two cut";
    EXPECT_EQ(tcp.written, QList<QByteArray>{vmailFrame("840012312", '<').toLatin1()});
    EXPECT_EQ(lines().first(), "MODIFY FCOS: 400123 FCOS: 12");
}

TEST_F(VoiceMail, EmptyFieldIsRefusedWithItsNotice) {
    const QString noMailbox = "Please enter a Mailbox Number";
    struct Case {
        Action action;
        FieldTexts fields;
        QString notice;
    } cases[] = {
        // clang-format off
        {Control::cmd_chk_in, {}, noMailbox},
        {Control::Command6, {{txt_ls_pilot, "4001"}}, noMailbox},
        {Control::Command6, {{txt_suite_2, "4002"}}, noMailbox},
        {Control::cmd_replace_name, {{txt_ls_pilot, "4001"}}, "Please enter a Number for 'Unread'"},
        {Control::cmd_xfer_name, {{txt_ls_pilot, "4001"}}, "Please enter a Number for the PASCODE"},
        {Control::cmd_dept, {{txt_ls_pilot, "4001"}}, "Please enter a Number for the PASSCODE"},
        {Control::cmd_department_2, {{txt_ls_pilot, "4001"}}, "Please enter a Number for new ID"},
        {Control::cmd_department_3, {{txt_ls_pilot, "4001"}}, "Please enter a Number for new FCOS"},
        // clang-format on
    };
    for (const Case& c : cases) {
        restart();
        QSignalSpy refused(&session.events(), &SessionEvents::pressRefused);
        click(c.fields, c.action);
        EXPECT_EQ(op.notices, QStringList{c.notice});
        EXPECT_TRUE(tcp.written.isEmpty());
        EXPECT_TRUE(session.recorder().scriptText().isEmpty());
        ASSERT_EQ(refused.size(), 1);
        EXPECT_EQ(refused[0][0].toString(), c.notice);
    }
}

TEST_F(VoiceMail, OnlyTheCheckInRunsDuringAWait) {
    const Link::WaitGuard busy(session.link());
    // clang-format off
    type({{txt_ls_pilot, "4001"}, {txt_suite_1, "1"}, {txt_suite_2, "2"}, {txt_suite_3, "3"}, {txt_suite_4, "4"}, {txt_department, "5"}});
    // clang-format on
    for (Action a : {Control::cmd_chk_out, Control::cmd_name_1, Control::Command6,
                     Control::cmd_replace_name, Control::cmd_xfer_name, Control::cmd_dept,
                     Control::cmd_department_2, Control::cmd_department_3})
        session.press(a);
    EXPECT_TRUE(tcp.written.isEmpty());
    session.press(Control::cmd_chk_in);
    EXPECT_EQ(tcp.written, QList<QByteArray>{vmailFrame("24001  ", '4').toLatin1()});
}

} // namespace
