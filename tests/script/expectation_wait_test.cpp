#include "common/script_fixture.h"
#include "script/expectation_waits.h"
#include "script/script_check.h"
#include "script/script_reader.h"

using namespace Qt::StringLiterals;

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ExpectationWait : public ScriptFixture {
protected:
    void SetUp() override {
        ScriptFixture::SetUp();
        session.recorder().start(QString());
        session.fields().setText(Field::txt_suite_1, "101");
    }
    void pbxSends(const QByteArray& bytes, qint64 atMs, bool overTcp = true) {
        (overTcp ? tcp : serial).deliver(bytes, atMs);
    }
};

TEST_F(ExpectationWait, PlainWaitReportsOtherMessagesThenSucceeds) {
    pbxSends(frame("STS2   102"), 500);
    pbxSends(frame("STS2   101"), 1500);
    engine.WAIT("sts2", "9");
    EXPECT_EQ(lines(),
              QStringList({"waiting for --> sts2", "Received--> STS2   102", "Sending -->    ACK",
                           "ERROR occurred: did not recieve --> sts2",
                           "but recieved --> STS2   102", "Received--> STS2   101",
                           "Sending -->    ACK", "successfully received --> sts2"}));
    EXPECT_EQ(op.notices, QStringList{"successfully received --> sts2"});
    EXPECT_EQ(session.recorder().scriptText(), "WAIT STS2   101 9\r\n");
    EXPECT_TRUE(
        session.errors().errorReport().endsWith(": ERROR occurred while waiting for --> sts2\nbut "
                                                "instead receieved --> \x02STS2   102\x03\n\n"));
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_EQ(pump.elapsedMs(), 1500) << "ends as the expected message arrives";
    EXPECT_FALSE(session.link().waitingForAck());
}

TEST_F(ExpectationWait, TwoMessagesHandledInOneTurnBothReachTheWait) {
    // The expected MW and a later STS2 arrive before the wait looks again: the MW still meets it.
    pbxSends(frame("MW 1   101"), 500);
    pbxSends(frame("STS2   101"), 500);
    engine.WAIT("mw1", "9");
    EXPECT_TRUE(lines().contains("successfully received --> mw1")) << lines().join('|');
    EXPECT_EQ(pump.elapsedMs(), 500);
    // In the other order the STS2 is reported and the MW still meets the wait.
    const qsizetype before = lines().size();
    pbxSends(frame("STS2   101"), 500);
    pbxSends(frame("MW 1   101"), 500);
    engine.WAIT("mw1", "9");
    const QStringList second = lines().mid(before);
    EXPECT_TRUE(second.contains("but recieved --> STS2   101")) << second.join('|');
    EXPECT_TRUE(second.contains("successfully received --> mw1"));
}

TEST_F(ExpectationWait, NoticeWaitPassesOverOtherMessagesInSilence) {
    pbxSends(frame("STS2   102"), 500);
    pbxSends(frame("STS2   101"), 1500);
    engine.NTFY("sts2", "9");
    EXPECT_EQ(lines(), QStringList({"send notify for --> sts2", "Received--> STS2   102",
                                    "Sending -->    ACK", "Received--> STS2   101",
                                    "Sending -->    ACK", "successfully received --> sts2"}));
    EXPECT_TRUE(session.errors().errorReport().isEmpty());
    EXPECT_EQ(session.recorder().scriptText(), "NTFY STS2   101 9\r\n");

    // What a notice wait for "alt" records, replay passes over.
    restart();
    session.fields().setText(Field::txt_suite_1, "101");
    pbxSends(frame("ALT1   101"), 100);
    engine.NTFY("alt", "3");
    EXPECT_TRUE(session.recorder().scriptText().endsWith("NTFY ATL   101 3\r\n"));
}

TEST_F(ExpectationWait, Outcomes) {
    struct Case {
        const char* name;
        QString item;
        QString digit;
        QByteArray arrives; // at 1 s, empty for none
        bool overTcp;
        bool succeeds;
        qint64 endsAtMs; // -1: stopped at 100 s
        QString recorded;
    } cases[] = {
        // clang-format off
        {"digit x waits five seconds", "sts1", "x", "", true, false, 5000, ""},
        {"digit x records 5", "sts1", "x", frame("STS1   101"), true, true, 1000, "WAIT STS1   101 5\r\n"},
        {"digit 0 waits until stopped", "sts1", "0", "", true, false, -1, ""},
        {"rti over tcp", "rti", "3", frame("RQINZ     "), true, true, 1000, "WAIT rti 3\r\n"},
        {"rti over serial never", "rti", "3", frame("RQINZ     "), false, false, 3000, ""},
        {"ack never succeeds", "ack", "2", ACK, true, false, 2000, ""},
        {"mr with its room", "mr", "4", frame("MR 0001  101"), true, true, 1000, "WAIT MR 0001  101 4\r\n"},
        {"mr with another code", "mr", "4", frame("MR 0002  101"), true, false, 4000, ""},
        {"mw1", "mw1", "4", frame("MW 1   101"), true, true, 1000, "WAIT MW 1   101 4\r\n"},
        {"alt expects ALT1 and records ALT", "alt", "4", frame("ALT1   101"), true, true, 1000, "WAIT ALT   101 4\r\n"},
        {"sts for another room", "sts3", "2", frame("STS3   102"), true, false, 2000, ""},
        // clang-format on
    };
    for (auto& c : cases) {
        restart();
        session.recorder().start(QString());
        session.fields().setText(Field::txt_suite_1, "101");
        session.link().settings().useTcp = c.overTcp;
        serial.openPort("/dev/ttyS0");
        const qint64 start = pump.elapsedMs();
        if (!c.arrives.isEmpty())
            pbxSends(c.arrives, 1000, c.overTcp);
        if (c.endsAtMs < 0)
            pump.schedule(100'000, [&] { engine.cmd_cancel(); });
        engine.WAIT(c.item, c.digit);
        const qint64 took = pump.elapsedMs() - start;
        if (c.endsAtMs < 0)
            EXPECT_EQ(took, 100'000) << c.name;
        else
            EXPECT_NEAR(took, c.endsAtMs, c.succeeds ? 0 : 20) << c.name;
        EXPECT_EQ(lines().contains("successfully received --> " + c.item), c.succeeds) << c.name;
        EXPECT_EQ(lines().contains("Time expired.  Did not receive--> " + c.item),
                  !c.succeeds && c.endsAtMs >= 0)
            << c.name;
        EXPECT_EQ(session.recorder().scriptText(), c.recorded) << c.name;
        EXPECT_FALSE(engine.stopScript()) << c.name;
        EXPECT_EQ(session.errors().errorCount(), 0) << c.name;
    }
}

// The digit is one rule: what the lists take from the time field, what they record, what a
// script line's digit waits and what the check says of it.
TEST_F(ExpectationWait, ListsScriptsAndTheCheckReadTheDigitAlike) {
    const struct {
        QString text, digit;
        QString drives; // a part of what the check says of a script line with the text; empty: none
    } cases[] = {{"3", "3", "up to 3 s"}, {"0", "0", "no time limit"},
                 {"x", "5", "up to 5 s"}, {"", "5", ""},
                 {"12", "5", ""},         {u"\u0663"_s, "5", ""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(waitDigit(c.text), c.digit);
        restart();
        session.fields().setText(Field::txt_suite_1, "101");
        session.fields().setText(Field::txt_time, c.text);
        pbxSends(frame("STS4   101"), 100);
        engine.cmb_wait_Click("sts4");
        EXPECT_EQ(session.recorder().scriptText(), "WAIT STS4   101 " + c.digit + "\r\n");
        if (c.drives.isEmpty())
            continue;
        const ScriptCheck check =
            checkScript(readScript("WAIT STS4   101 " + c.text.toLatin1() + "\r\n;\r\n"));
        ASSERT_EQ(check.rows.size(), 1);
        EXPECT_TRUE(check.rows[0].drives.contains(c.drives)) << check.rows[0].drives.toStdString();
    }
    restart();
    engine.cmb_notify_Click("bogus");
    EXPECT_EQ(op.notices, QStringList{"message not recgonized"});
    engine.cmb_notify_Click("");
    EXPECT_EQ(op.notices.size(), 1);
}

TEST_F(ExpectationWait, RecoveryRunsItsFixedDialogue) {
    // Its waits for "ack" never succeed, so the operator steps through them with CANCEL.
    session.recorder().suspend();
    pbx.options.firstEnqAnswers = {sim::Answer::Silent};
    std::function<void()> cancelEachSecond = [&] {
        engine.cmd_cancel();
        pump.schedule(1000, cancelEachSecond);
    };
    pump.schedule(7000, cancelEachSecond);
    tcp.deliver(frame("RQINZ     "), 30'000);
    engine.cmd_recovery();

    const QByteArray ayt = frame("AREYUTHERE");
    QList<QByteArray> expected = {ENQ, ENQ}; // the first bid is not answered, the second is
    for (int round = 0; round < 4; ++round)
        expected << ENQ << ayt;
    expected << ACK << ACK;
    EXPECT_EQ(tcp.written, expected);
    EXPECT_EQ(lines().count("waiting for --> ack"), 8);
    EXPECT_TRUE(lines().contains("waiting for --> enq"));
    EXPECT_TRUE(lines().contains("waiting for --> rti"));
}

} // namespace
