#include "common/session_fixture.h"

#include "protocol/message_catalogue.h"

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
    static QString vmailFrame(const QString& body) {
        return start_of_text() + body + end_of_text() + CRC(body + end_of_text());
    }
    // The catalogue's entry for the operation the button of `action` carries.
    static const VmailMessage& catalogued(Action action) {
        for (const VmailMessage& message : vmailMessages())
            if (message.button == action)
                return message;
        qFatal("no catalogued operation for the action");
    }
};

TEST_F(VoiceMail, EachButtonSendsItsOperation) {
    struct Case {
        const char* what;
        Action action;
        QString protocol;
        FieldTexts fields;
        QString body;
    } cases[] = {
        {"check in", Control::cmd_chk_in, "HIS", {}, "24001  "},
        {"check in hyatt", Control::cmd_chk_in, "HYATT", {}, "24001        "},
        {"check out", Control::cmd_chk_out, "HIS", {}, "34001  "},
        {"query", Control::cmd_name_1, "HIS", {}, "64001  "},
        {"move", Control::Command6, "HIS", {{txt_suite_2, "4002"}}, "74001  4002  "},
        {"unread", Control::cmd_replace_name, "HIS", {{txt_department, "3"}}, "94001  3 "},
        {"passcode check in",
         Control::cmd_xfer_name,
         "HIS",
         {{txt_suite_1, "1234"}},
         "A4001  1234  "},
        {"passcode", Control::cmd_dept, "HIS", {{txt_suite_1, "99"}}, "B4001  99    "},
        {"id", Control::cmd_department_2, "HIS", {{txt_suite_3, "12345"}}, "D4001  12345 "},
        {"fcos", Control::cmd_department_3, "HIS", {{txt_suite_4, "7"}}, "84001  7 "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        restart();
        session.link().setMode(session.link().pmsMode(), *protocolNamed(c.protocol));
        const qint64 start = pump.elapsedMs();
        const QString lastBefore = session.lastVmailMessage();
        click(c.fields + FieldTexts{{txt_ls_pilot, "4001"}}, c.action);
        const QString sent = vmailFrame(c.body);
        const bool checkIn = c.action == Control::cmd_chk_in;
        EXPECT_EQ(tcp.written, QList<QByteArray>{sent.toLatin1()});
        // The log line is the catalogue's: its label, the mailbox, and the second field's. The
        // receiver reports the ACK itself; all but the check-in report it again.
        const VmailMessage& m = catalogued(c.action);
        const QString logLine =
            m.label + "4001" +
            (m.extra ? m.extraLabel + session.fields().text(*m.extra) : QString());
        EXPECT_EQ(lines(), QStringList({logLine, "PBX ACKed"}) +
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
    EXPECT_EQ(session.recorder().scriptText(), vmailFrame("34001  ") + "~\r\n");
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_TRUE(session.errors().errorReport().isEmpty());
}

TEST_F(VoiceMail, OverlongFieldsAreCutInTheirTextBoxes) {
    QSignalSpy changes(&session.fields(), &Fields::changed);
    click({{txt_ls_pilot, "4001234"}, {txt_suite_4, "123"}}, Control::cmd_department_3);
    EXPECT_EQ(session.fields().text(txt_ls_pilot), "400123");
    EXPECT_EQ(session.fields().text(txt_suite_4), "12");
    EXPECT_EQ(changes.size(), 4) << "two typed, two cut";
    EXPECT_EQ(tcp.written, QList<QByteArray>{vmailFrame("8400123"
                                                        "12")
                                                 .toLatin1()});
    EXPECT_EQ(lines().first(), "MODIFY FCOS: 400123 FCOS: 12");
}

TEST_F(VoiceMail, EmptyFieldIsRefusedWithItsNotice) {
    // Which field is left empty; its notice is the catalogue's.
    enum class Empty { Mailbox, Extra };
    struct Case {
        Action action;
        FieldTexts fields;
        Empty empty;
    } cases[] = {
        {Control::cmd_chk_in, {}, Empty::Mailbox},
        {Control::Command6, {{txt_ls_pilot, "4001"}}, Empty::Extra},
        {Control::Command6, {{txt_suite_2, "4002"}}, Empty::Mailbox},
        {Control::cmd_replace_name, {{txt_ls_pilot, "4001"}}, Empty::Extra},
        {Control::cmd_xfer_name, {{txt_ls_pilot, "4001"}}, Empty::Extra},
        {Control::cmd_dept, {{txt_ls_pilot, "4001"}}, Empty::Extra},
        {Control::cmd_department_2, {{txt_ls_pilot, "4001"}}, Empty::Extra},
        {Control::cmd_department_3, {{txt_ls_pilot, "4001"}}, Empty::Extra},
    };
    for (const Case& c : cases) {
        restart();
        const QString notice =
            c.empty == Empty::Mailbox ? mailboxMissingNotice() : catalogued(c.action).extraMissing;
        ASSERT_FALSE(notice.isEmpty());
        QSignalSpy refused(&session.events(), &SessionEvents::pressRefused);
        click(c.fields, c.action);
        EXPECT_EQ(op.notices, QStringList{notice});
        EXPECT_TRUE(tcp.written.isEmpty());
        EXPECT_TRUE(session.recorder().scriptText().isEmpty());
        ASSERT_EQ(refused.size(), 1);
        EXPECT_EQ(refused[0][0].toString(), notice);
    }
}

TEST_F(VoiceMail, EveryOperationOfAButtonIsTried) {
    // The buttons of the two tables above, against the catalogue's operations.
    const QList<Action> tried = {
        Control::cmd_chk_in, Control::cmd_chk_out,      Control::cmd_name_1,
        Control::Command6,   Control::cmd_replace_name, Control::cmd_xfer_name,
        Control::cmd_dept,   Control::cmd_department_2, Control::cmd_department_3};
    for (const VmailMessage& message : vmailMessages()) {
        if (!message.button)
            continue;
        EXPECT_TRUE(std::any_of(tried.cbegin(), tried.cend(), [&](Action a) {
            return &catalogued(a) == &message;
        })) << message.code.toStdString();
    }
}

TEST_F(VoiceMail, OnlyTheCheckInRunsDuringAWait) {
    const Link::WaitGuard busy(session.link());
    type({{txt_ls_pilot, "4001"},
          {txt_suite_1, "1"},
          {txt_suite_2, "2"},
          {txt_suite_3, "3"},
          {txt_suite_4, "4"},
          {txt_department, "5"}});
    for (Action a : {Control::cmd_chk_out, Control::cmd_name_1, Control::Command6,
                     Control::cmd_replace_name, Control::cmd_xfer_name, Control::cmd_dept,
                     Control::cmd_department_2, Control::cmd_department_3})
        session.press(a);
    EXPECT_TRUE(tcp.written.isEmpty());
    session.press(Control::cmd_chk_in);
    EXPECT_EQ(tcp.written, QList<QByteArray>{vmailFrame("24001  ").toLatin1()});
}

} // namespace
