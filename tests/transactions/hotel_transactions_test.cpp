#include "common/session_fixture.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;
using enum Field;

namespace {

class HotelTransactions : public SessionFixture {};

// One room (101, or 12 for the restriction) with the second field each transaction needs: the
// frame's body, and what the log and the error report say of it.
struct Transaction {
    Control action;
    FieldTexts fields;
    QString body;
    QString logPrefix;
    QString failure;       // the sentence after "PBX DID NOT ACKnowkledge the "
    QString reported = {}; // the failure lines' text when it is not the body
};

// clang-format off
const Transaction transactions[] = {
    {Control::cmd_chk_in, {{txt_suite_1, "101"}}, "CHK1   101", "Sending     -->", "Check in message:"},
    {Control::cmd_chk_out, {{txt_suite_1, "101"}}, "CHK0   101", "Sending   -->", "Check out message:"},
    {Control::cmd_name_1, {{txt_suite_1, "101"}, {Text1, " Smith "}}, "NAM1 Smith                  101", "Sending  -->", "Add name message:"},
    {Control::cmd_replace_name, {{txt_suite_1, "101"}, {Text1, "Smith"}}, "NAM2 Smith                  101", "Sending   -->", "replace name message:"},
    {Control::Command6, {{txt_suite_1, "101"}, {Text1, "Smith"}}, "NAM3 Smith                  101", "Sending   -->", "delete message:"},
    {Control::cmd_msg_wait, {{txt_suite_1, "101"}}, "MW 1   101", "Sending  -->", "message waiting on message:"},
    {Control::cmd_message_waiting_0, {{txt_suite_1, "101"}}, "MW 0   101", "Sending  -->", "message waiting off message:"},
    {Control::cmd_set_credit, {{txt_suite_1, "101"}, {txt_credit, "500"}}, "LMT1   101   500", "Sending  -->", "credit limit msg:"},
    {Control::cmd_wakeup, {{txt_suite_1, "101"}, {txt_time, "0730"}}, "WKP0730  101", "Sending  -->", "wakeup message:", "WKP 0730  101"},
    {Control::cmb_restrict, {{txt_suite_1, "12"}}, "RST2    12", "Send     -->", "Station Restriction Message:"},
    {Control::cmd_dept, {{txt_suite_1, "101"}, {txt_department, "SALES"}}, "DPT1 SALES       101", "Sending  -->", "add department message:"},
    {Control::cmd_department_2, {{txt_suite_1, "101"}, {txt_department, "SALES"}}, "DPT2 SALES       101", "Sending   -->", "replace department message:"},
    {Control::cmd_department_3, {{txt_suite_1, "101"}, {txt_department, "SALES"}}, "DPT3 SALES       101", "Sending   -->", "delete department message:"},
    {Control::cmd_loc, {{txt_suite_1, "101"}, {txt_location, "LOBBY"}}, "LOC1 LOBBY       101", "Sending  -->", "add location message:"},
    {Control::cmd_location_2, {{txt_suite_1, "101"}, {txt_location, "LOBBY"}}, "LOC2 LOBBY       101", "Sending  -->", "replace location message:"},
    {Control::cmd_location_3, {{txt_suite_1, "101"}, {txt_location, "LOBBY"}}, "LOC3 LOBBY       101", "Sending  -->", "delete location message:"},
};
// clang-format on

TEST_F(HotelTransactions, AcknowledgedFrameIsLoggedAndRecorded) {
    for (const Transaction& t : transactions) {
        SCOPED_TRACE(t.body.toStdString());
        restart();
        chosenRestriction = "long distant call";
        click(t.fields, t.action);
        EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ, frame(t.body.toLatin1())}));
        EXPECT_EQ(lines(), (grantedBid() + QStringList{t.logPrefix + t.body, "Received--> ACK"}));
        EXPECT_EQ(session.recorder().scriptText(), t.body + "\r\n");
        EXPECT_EQ(session.errors().errorCount(), 0);
    }
}

TEST_F(HotelTransactions, FiveRefusedFramesFailOnce) {
    pbx.options.onFrame = Answer::Nak;
    for (const Transaction& t : transactions) {
        SCOPED_TRACE(t.body.toStdString());
        restart();
        chosenRestriction = "long distant call";
        // a second room is never reached
        click(t.fields + FieldTexts{{txt_suite_3, "103"}}, t.action);
        EXPECT_EQ(tcp.written,
                  QList<QByteArray>({ENQ}) + QList<QByteArray>(5, frame(t.body.toLatin1())));
        const QString reported = t.reported.isEmpty() ? t.body : t.reported;
        const QString failure = "-> PBX DID NOT ACKnowkledge the " + t.failure;
        EXPECT_EQ(
            lines().mid(lines().size() - 4),
            QStringList({t.logPrefix + t.body, "Received--> NAK", stamp() + failure, reported}));
        EXPECT_EQ(session.errors().errorReport(), stamp() + failure + "\n" + reported + "\n\n");
        EXPECT_EQ(session.errors().errorCount(), 1);
        EXPECT_TRUE(session.recorder().scriptText().isEmpty());
    }
}

TEST_F(HotelTransactions, CheckInTakesTheLineBidsAckForTheFrames) {
    pbx.options.onFrame = Answer::Silent;
    click({{txt_suite_1, "101"}}, Control::cmd_chk_in);
    click({}, Control::cmd_chk_out);
    EXPECT_EQ(tcp.written.count(frame("CHK1   101")), 1);
    EXPECT_EQ(tcp.written.count(frame("CHK0   101")), 5);
    EXPECT_EQ(session.recorder().scriptText(), "CHK1   101\r\n");
}

TEST_F(HotelTransactions, RefusedLineBidEndsTheClick) {
    struct Case {
        Action action;
        bool timedLog;
        qint16 counted;
    } cases[] = {{Control::cmd_chk_out, true, 1},
                 {Control::cmd_name_1, true, 1},
                 {Control::cmb_restrict, false, 0}};
    pbx.options.onEnq = Answer::Nak;
    for (const Case& c : cases) {
        restart();
        chosenRestriction = "internal call";
        click({{txt_suite_1, "101"}, {txt_suite_2, "102"}, {Text1, "Smith"}}, c.action);
        EXPECT_EQ(tcp.written, QList<QByteArray>(5, ENQ));
        const QString enqLine = " PBX DID NOT ACKnowkledge ENQ message";
        EXPECT_EQ(lines().last(), (c.timedLog ? stamp() : QString()) + enqLine);
        EXPECT_EQ(session.errors().errorReport(), stamp() + enqLine + "\n");
        EXPECT_EQ(session.errors().errorCount(), c.counted);
    }
}

TEST_F(HotelTransactions, RoomsSentAsCheckedOrTyped) {
    struct Case {
        bool errorMode;
        QStringList rooms; // the five room fields in order
        QList<QByteArray> bodies;
    } cases[] = {
        {false, {"123456", "", "   ", "", "7"}, {"CHK1     7"}},
        {false, {" 101 ", "", "102", "", ""}, {"CHK1   101", "CHK1   102"}},
        {true, {" 12", "", "1234567", "", ""}, {"CHK1  12", "CHK1 1234567"}},
    };
    for (const Case& c : cases) {
        restart();
        session.choose(Control::chk_error, c.errorMode);
        for (int i = 0; i < 5; ++i)
            type({{roomFields[i], c.rooms[i]}});
        session.press(Control::cmd_chk_in);
        QList<QByteArray> expected;
        for (const QByteArray& body : c.bodies)
            expected += {ENQ, frame(body)};
        EXPECT_EQ(tcp.written, expected);
        EXPECT_FALSE(session.log().logText().contains("no valid room number"));
    }
}

TEST_F(HotelTransactions, ErrorModeSendsEveryFieldAsTyped) {
    session.choose(Control::chk_error, true);
    click({{txt_suite_1, "101"}, {Text1, " Smith"}, {txt_time, "99"}}, Control::cmd_name_1);
    click({}, Control::cmd_wakeup);
    EXPECT_EQ(tcp.written,
              QList<QByteArray>({ENQ, frame("NAM1  Smith101"), ENQ, frame("WKP99101")}));
}

TEST_F(HotelTransactions, RetryCounterIsSharedByTheRoomsOfOneClick) {
    pbx.options.firstFrameAnswers = {Answer::Nak, Answer::Ack};
    pbx.options.onFrame = Answer::Nak;
    click({{txt_suite_1, "101"}, {txt_suite_2, "102"}, {txt_ls_pilot, "105"}},
          Control::cmd_chk_out);
    EXPECT_EQ(tcp.written.count(frame("CHK0   101")), 2);
    EXPECT_EQ(tcp.written.count(frame("CHK0   102")), 4) << "the first room left four attempts";
    EXPECT_EQ(tcp.written.count(frame("CHK0   105")), 0);
    EXPECT_EQ(session.recorder().scriptText(), "CHK0   101\r\n");
    EXPECT_EQ(session.errors().errorCount(), 1);
}

TEST_F(HotelTransactions, TransferNameSendsEachRoomWithTheSecondField) {
    click({{txt_suite_1, "101"}, {txt_suite_2, "205"}, {Text1, "Smith"}}, Control::cmd_xfer_name);
    EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ, frame("NAM4 Smith                  101  205"),
                                              ENQ, frame("NAM4 Smith                  205  205")}));
    EXPECT_EQ(lines()[2], "Sending   -->NAM4 Smith                  101  205");
    EXPECT_EQ(session.recorder().scriptText(), "NAM4 Smith                  101  205\r\n"
                                               "NAM4 Smith                  205  205\r\n");
}

TEST_F(HotelTransactions, InvalidSecondFieldSkipsTheRoom) {
    const QString longName(22, 'x');
    struct Case {
        Action action;
        FieldTexts fields;
        QStringList log;
    } cases[] = {
        // clang-format off
        {Control::cmd_name_1, {{txt_suite_1, "101"}, {txt_suite_2, "102"}, {Text1, longName}}, {"Invalid Name!", "Invalid Name!", "no valid room number"}},
        {Control::cmd_replace_name, {{txt_ls_pilot, "105"}, {Text1, "  "}}, {"Invalid Name!"}},
        {Control::cmd_xfer_name, {{txt_suite_1, "101"}, {Text1, "Smith"}}, {"Invalid Transfer Room Number!", "no valid room number"}},
        {Control::cmd_xfer_name, {{txt_suite_1, "101"}, {txt_suite_2, "205"}}, {"Invalid Name!", "Invalid Name!", "no valid room number"}},
        {Control::cmd_set_credit, {{txt_suite_1, "101"}}, {"Invalid Name!", "no valid room number"}},
        {Control::cmd_wakeup, {{txt_suite_1, "101"}, {txt_time, "0760"}}, {"Invalid Time!", "no valid room number"}},
        {Control::cmd_department_3, {{txt_suite_1, "101"}, {txt_department, "ACCOUNTING1"}}, {"Invalid Department!", "no valid room number"}},
        {Control::cmd_location_2, {{txt_suite_1, "101"}}, {"Invalid Location!", "no valid room number"}},
        {Control::cmd_msg_wait, {}, {"no valid room number"}},
        {Control::cmb_restrict, {}, {"No valid room number"}},
        // clang-format on
    };
    for (const Case& c : cases) {
        restart();
        chosenRestriction = "option 3";
        QSignalSpy refusedFields(&session.events(), &SessionEvents::fieldRefused);
        QSignalSpy refusedPress(&session.events(), &SessionEvents::pressRefused);
        click(c.fields, c.action);
        EXPECT_EQ(lines(), c.log);
        EXPECT_TRUE(tcp.written.isEmpty());
        // Each line is a refused field; the press that sent nothing tells them all once.
        EXPECT_EQ(refusedFields.size(), c.log.size());
        ASSERT_EQ(refusedPress.size(), 1);
        EXPECT_EQ(refusedPress[0][0].toString(), c.log.join('\n'));
    }
}

TEST_F(HotelTransactions, APressThatSendsIsNoRefusal) {
    QSignalSpy refusedPress(&session.events(), &SessionEvents::pressRefused);
    // The first room is too long and skipped without a word; the second goes out.
    click({{txt_suite_1, "123456"}, {txt_suite_3, "103"}}, Control::cmd_chk_in);
    EXPECT_EQ(tcp.written, QList<QByteArray>({ENQ, frame("CHK1   103")}));
    EXPECT_TRUE(refusedPress.isEmpty());
}

TEST_F(HotelTransactions, RestrictionListSendsTheLevelOfTheChoice) {
    const QStringList choices = {"internal call", "local call", "long distant call",
                                 "option 1",      "option 2",   "option 3"};
    type({{txt_suite_1, "12"}});
    for (const QString& choice : choices)
        session.cmb_restrict_Click(choice);
    session.cmb_restrict_Click("long distance call");
    session.cmb_restrict_Click(QString());
    QList<QByteArray> expected;
    for (char level : QByteArray("012345"))
        expected += {ENQ, frame(QByteArray("RST") + level + "    12")};
    EXPECT_EQ(tcp.written, expected);
    EXPECT_EQ(op.notices, QStringList{"message not recgonized"});
}

TEST_F(HotelTransactions, NothingHappensDuringAWait) {
    const Link::WaitGuard busy(session.link());
    chosenRestriction = "local call";
    // clang-format off
    type({{txt_suite_1, "101"}, {txt_suite_2, "205"}, {Text1, "Smith"}, {txt_credit, "5"}, {txt_time, "0730"}, {txt_department, "D"}, {txt_location, "L"}, {txt_ls_pilot, "101"}});
    // clang-format on
    for (const Transaction& t : transactions)
        press(t.action);
    for (Action a : {Control::cmd_xfer_name, Control::cmd_ste0, Control::cmd_ste5})
        session.press(a);
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_TRUE(session.log().logText().isEmpty());
}

} // namespace
