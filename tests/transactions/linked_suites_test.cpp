#include "common/session_fixture.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;
using enum Field;

namespace {

class LinkedSuites : public SessionFixture {
protected:
    // What the log and the error report say of a linked-suite message.
    const QString logPrefix = "Sending    -->";
    const QString failureSentence = "-> PBX DID NOT ACKnowkledge the link suite message:";
    // The pilot, then txt_suite_1 .. txt_suite_4.
    void typeAndPress(const QStringList& fields, Action action) {
        type({{txt_ls_pilot, fields[0]}});
        for (int i = 0; i < 4; ++i)
            type({{roomFields[i], fields[i + 1]}});
        session.press(action);
    }
};

TEST_F(LinkedSuites, BodyIsCutByItsLastCharacter) {
    struct Case {
        bool errorMode;
        Action action;
        QStringList fields; // pilot, then txt_suite_1 .. txt_suite_4
        QString body;
    } cases[] = {
        {false, Control::cmd_ste0, {"101", "102", "103", "", ""}, "STE0   101   102   103"},
        {false, Control::cmd_steB, {"101", "", "", "", ""}, "STEB   101"},
        {false, Control::cmd_ste7, {"101", " 102 ", "", "104", ""}, "STE7   101   102   104"},
        {true, Control::cmd_ste1, {"101", "102", "103", "", ""}, "STE1 101 10210"},
        {true, Control::cmd_ste1, {"101", "102", "", "", "105"}, "STE1 101 10210"},
        {true, Control::cmd_ste2, {"NotValid", "", "", "", ""}, "STE2 NotValid"},
        {false, Control::cmd_ste5, {"101", "201", "301", "401", "501"}, "STE5   101   201"},
        {true, Control::cmd_ste5, {"101", "201", "", "", ""}, "STE5 101 201"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body.toStdString());
        restart();
        session.choose(Control::chk_error, c.errorMode);
        typeAndPress(c.fields, c.action);
        EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ, frame(c.body.toLatin1())}));
        const QStringList log = grantedBid() + QStringList{logPrefix + c.body, "Received--> ACK"};
        EXPECT_EQ(lines(), log);
        EXPECT_EQ(session.recorder().scriptText(), c.body + "\r\n");
    }
}

TEST_F(LinkedSuites, FirstInvalidFieldIsLoggedAndNothingSent) {
    struct Case {
        Action action;
        QStringList fields;
        QString line;
    } cases[] = {
        {Control::cmd_ste0, {"", "1234567", "", "", ""}, "Invalid link suite pilot number!"},
        {Control::cmd_ste6, {"101", "102", "", "123456", ""}, "Invalid member number 3!"},
        {Control::cmd_ste6, {"101", "", "", "", "123456"}, "Invalid member number 4!"},
        {Control::cmd_ste5, {"101", "", "", "", ""}, "Invalid link suite pilot  number 2!"},
    };
    for (const Case& c : cases) {
        restart();
        typeAndPress(c.fields, c.action);
        EXPECT_EQ(lines(), QStringList{c.line});
        EXPECT_TRUE(tcp.written.isEmpty());
    }
}

TEST_F(LinkedSuites, FiveSilentAttemptsCountOneError) {
    pbx.options.onFrame = Answer::Silent;
    click({{txt_ls_pilot, "101"}, {txt_suite_1, "102"}}, Control::cmd_ste4);
    const QString body = "STE4   101   102";
    const QString sentence = failureSentence;
    const QStringList log =
        grantedBid() + QStringList(5, logPrefix + body) + QStringList{stamp() + sentence, body};
    EXPECT_EQ(lines(), log);
    EXPECT_EQ(session.errors().errorReport(), stamp() + sentence + "\n" + body + "\n\n");
    EXPECT_EQ(session.errors().errorCount(), 1);
    EXPECT_TRUE(session.recorder().scriptText().isEmpty());
}

TEST_F(LinkedSuites, RefusedLineBidIsNotCounted) {
    pbx.options.onEnq = Answer::Silent;
    click({{txt_ls_pilot, "101"}, {txt_suite_1, "201"}}, Control::cmd_ste5);
    const QString enqLine = stamp() + " PBX DID NOT ACKnowkledge ENQ message";
    EXPECT_EQ(lines().last(), enqLine);
    EXPECT_EQ(session.errors().errorReport(), enqLine + "\n");
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_EQ(tcp.written, QList<QByteArray>(5, ENQ));
}

TEST_F(LinkedSuites, ExplanationListsTheElevenCodes) {
    session.cmd_ste_explain();
    ASSERT_EQ(op.notices.size(), 1);
    const QStringList rows = op.notices.first().split('\n');
    EXPECT_EQ(rows.size(), 12);
    EXPECT_EQ(rows[5], "5 Change Pilot , No Check Out");
    EXPECT_EQ(rows[8], "8 Create Liked Suite, No Check In, No Shared Telephone Service (STS)");
    EXPECT_EQ(rows.last(), "") << "every row ends with a line feed";
}

} // namespace
