// The JUnit cases of a run, built from what happens: a transaction the PBX did not take, or one
// cut short, never passes.
#include "assembly/junit_recorder.h"
#include "common/script_fixture.h"

using namespace larkspur;
using namespace larkspur::test;
using sim::Answer;

namespace {

class JunitCases : public ScriptFixture {
protected:
    QList<JunitReport::Case> cases;
    JunitRecorder recorder{session, engine};

    JunitCases() {
        QObject::connect(&recorder, &JunitRecorder::caseClosed,
                         [this](const JunitReport::Case& c) { cases.append(c); });
    }
    void SetUp() override {
        ScriptFixture::SetUp();
        session.recorder().suspend();
    }
};

TEST_F(JunitCases, OneCasePerCommandFailingWhenThePbxDidNotTakeIt) {
    struct Case {
        const char* name;
        QByteArray script;
        Answer onFrame;
        QString failure; // a part of it; empty: the case passes
    } table[] = {
        // clang-format off
        {"acknowledged", "CHK1   101\r\n;\r\n", Answer::Ack, ""},
        {"refused: the error record", "CHK0   101\r\n;\r\n", Answer::Nak, "-> PBX DID NOT ACKnowkledge the Check out message:"},
        {"check-in answered only by its ENQ's ACK", "CHK1   101\r\n;\r\n", Answer::Silent, "never acknowledged CHK1   101"},
        {"voice mail without an ACK", "VMAILHIS\r\n\x02" "24001  \x03" "4~\r\n;\r\n", Answer::Silent, "did not acknowledge CHECK IN: 4001"},
        {"a wait that times out", "WAIT STS2   101 1\r\n;\r\n", Answer::Ack, "Time expired.  Did not receive--> sts2"},
        {"unknown command", "STOP\r\n;\r\n", Answer::Ack, "unrecognized command \"STOP\""},
        {"an invalid time: nothing sent", "WKP0799  101\r\n;\r\n", Answer::Ack, "Invalid Time!\nno valid room number"},
        {"no room: nothing sent", "CHK1      \r\n;\r\n", Answer::Ack, "no valid room number"},
        {"error mode sends the invalid time", "WKP0799  101\r\n;\r\n", Answer::Ack, ""},
        // clang-format on
    };
    for (const Case& c : table) {
        SCOPED_TRACE(c.name);
        restart();
        cases.clear();
        pbx.options.onFrame = c.onFrame;
        session.choose(Control::chk_error, QString(c.name).startsWith("error mode"));
        play(c.script);
        ASSERT_EQ(cases.size(), 1);
        const JunitReport::Case& r = cases.first();
        if (QString(c.failure).isEmpty())
            EXPECT_TRUE(r.failure.isEmpty()) << r.failure;
        else
            EXPECT_TRUE(r.failure.contains(c.failure)) << r.failure;
    }
}

TEST_F(JunitCases, StoppedWaitsAndLostLinksFail) {
    pump.schedule(1500, [&] { engine.StopScript(); });
    play("WAIT STS2   101 0\r\nCHK1   101\r\n;\r\n");
    ASSERT_EQ(cases.size(), 2);
    EXPECT_TRUE(cases[0].failure.contains("stopped")) << cases[0].failure;
    EXPECT_TRUE(cases[1].failure.isEmpty());
    EXPECT_EQ(cases[1].name, "CHK1   101");
    EXPECT_EQ(cases[1].line, 2);

    restart();
    cases.clear();
    pbx.options.onFrame = Answer::Silent;
    tcp.loseLink("closed by the PBX", 1000);
    play("CHK0   101\r\nCHK0   102\r\n;\r\n");
    ASSERT_EQ(cases.size(), 1);
    EXPECT_TRUE(cases[0].failure.contains("link lost: closed by the PBX")) << cases[0].failure;
    EXPECT_TRUE(cases[0].failure.contains("interrupted")) << cases[0].failure;
}

} // namespace
