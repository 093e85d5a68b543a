#include "common/script_fixture.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using Outcome = ScriptEngine::RunOutcome;

namespace {

class Runner : public ScriptFixture {};

TEST_F(Runner, OneLineFilePlaysNothingAndCompletes) {
    EXPECT_EQ(play("CHK1   101\r\n"), Outcome::Completed);
    EXPECT_TRUE(tcp.written.isEmpty());
    EXPECT_EQ(op.notices, QStringList{"Script file completed"});
    EXPECT_EQ(lines(), QStringList{"************* STARTING SCRIPT ***************"});
    EXPECT_TRUE(enabled("Xtest"));
    EXPECT_TRUE(enabled("cmd_chk_in"));
    EXPECT_FALSE(enabled("StopScript"));
}

TEST_F(Runner, HotelScriptForcesHyattAndPacesOneSecond) {
    session.link().setMode(session.link().pmsMode(), Protocol::His);
    EXPECT_EQ(play("\r\nCHK1   101\r\nCHK0   102\r\n;\r\n"), Outcome::Completed);
    EXPECT_EQ(session.link().protocolType(), Protocol::Hyatt);
    EXPECT_EQ(frames(), QStringList({"CHK1   101", "CHK0   102"}));
    EXPECT_GE(pump.elapsedMs(), 2000);
}

TEST_F(Runner, EveryHotelWordReplaysItsFrame) {
    // clang-format off
    const QStringList script = {"CHK1   101", "CHK0   101", "NAM1 Smith                  101", "NAM2 Jones                  101",
        "NAM3 Jones                  101", "NAM4 Smith                  101  205", "MW 1   101", "MW 0   101", "LMT1   101   500",
        "WKP0730  101", "WKP2359  101", "RST2    12", "DPT1 SALES       101", "DPT2 SALES       101", "DPT3 SALES       101",
        "LOC1 LOBBY       101", "LOC2 LOBBY       101", "LOC3 LOBBY       101", "STE0   101   102   103", "STE3   101",
        "STEB   101   102   103   104   105", "STE5   101   102"};
    // clang-format on
    EXPECT_EQ(play((script.join("\r\n") + "\r\n;end\r\n").toLatin1()), Outcome::Completed);
    // Transfer Name fills both room fields, so its line sends a second frame for the target.
    QStringList expected = script;
    expected.insert(expected.indexOf("NAM4 Smith                  101  205") + 1,
                    "NAM4 Smith                  205  205");
    EXPECT_EQ(frames(), expected);
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_EQ(op.notices, QStringList{"Script file completed"});
}

TEST_F(Runner, VoiceMailScriptReplaysEveryCode) {
    session.link().setMode(PmsMode::Vmail, session.link().protocolType());
    session.link().setMode(session.link().pmsMode(), Protocol::His);
    session.recorder().start("VMAILHIS\r\n");
    // clang-format off
    const QList<std::pair<FieldTexts, Action>> clicks = {
        {{{Field::txt_ls_pilot, "4001"}}, Control::cmd_chk_in}, {{}, Control::cmd_chk_out}, {{}, Control::cmd_name_1},
        {{{Field::txt_suite_2, "4002"}}, Control::Command6}, {{{Field::txt_suite_4, "12"}}, Control::cmd_department_3},
        {{{Field::txt_department, "3"}}, Control::cmd_replace_name}, {{{Field::txt_suite_1, "1234"}}, Control::cmd_xfer_name},
        {{{Field::txt_suite_1, "4321"}}, Control::cmd_dept}, {{{Field::txt_suite_3, "77"}}, Control::cmd_department_2},
    };
    // clang-format on
    for (const auto& [texts, action] : clicks)
        click(texts, action);
    const QList<QByteArray> sent = tcp.written;
    ASSERT_EQ(sent.size(), 9);

    tcp.written.clear();
    session.recorder().suspend();
    session.link().setMode(PmsMode::Hotel, session.link().protocolType());
    EXPECT_EQ(play((session.recorder().scriptText() + ";\r\n").toLatin1()), Outcome::Completed);
    EXPECT_EQ(session.link().pmsMode(), PmsMode::Vmail);
    EXPECT_EQ(tcp.written, sent);
    EXPECT_EQ(controlStates(session.state())[size_t(Control::cmd_name_1)].caption,
              "Query MW Status");
}

TEST_F(Runner, UnknownWordStopsTheScript) {
    EXPECT_EQ(play("CHK1   101\r\nSTOP\r\nCHK0   101\r\n;\r\n"), Outcome::Unrecognized);
    EXPECT_EQ(frames(), QStringList{"CHK1   101"});
    EXPECT_EQ(op.notices, QStringList{"Command: STOP"});
    EXPECT_EQ(lines().mid(lines().size() - 2),
              QStringList({"Script file error! Unrecognized command", "Script Cancelled!"}));
    EXPECT_EQ(session.errors().errorReport(), stamp() + "-> Script File Corrupt:\n\n\n");
    EXPECT_EQ(session.errors().errorCount(), 0);
    EXPECT_TRUE(enabled("Xtest"));
}

TEST_F(Runner, TheUnknownCommandIsToldOnOneLineInTheReadableNotation) {
    const struct {
        const char* name;
        QByteArray script;
        QString notice;
    } cases[] = {
        // clang-format off
        {"UTF-8 byte order mark", "\xEF\xBB\xBF; comment\r\nCHK1   101\r\n;\r\n", "Command: \\xEF\\xBB\\xBF;"},
        {"UTF-16 with its mark", QByteArray("\xFF\xFE;\0 \0c\0\r\0\n\0;\0", 14), "Command: \\xFF\\xFE;\\x00"},
        {"a NUL in the word", QByteArray("CH\0K1   101\r\n;\r\n", 16), "Command: CH\\x00K"},
        // The lone LF ends the line: the room is read across it, the next command after it.
        {"a lone LF", "CHK1\n   101\r\n;\r\n", "Command: \\x0D\\x0A<ETX>"},
        {"a tag character", "<STX>\r\n;\r\n", "Command: \\x3CSTX"},
        {"a blank, then a semicolon", " ;x\r\n;\r\n", "Command:  ;x\\x0D"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        restart();
        EXPECT_EQ(play(c.script), Outcome::Unrecognized);
        EXPECT_EQ(op.notices, QStringList{c.notice});
    }
}

TEST_F(Runner, FailedTransactionsAreCountedAtTheEnd) {
    pbx.options.onFrame = sim::Answer::Nak;
    EXPECT_EQ(play("CHK0   101\r\nMW 1   102\r\n;\r\n"), Outcome::Completed);
    EXPECT_EQ(session.errors().errorCount(), 2);
    EXPECT_EQ(op.notices,
              QStringList{"Script file ended!\r\n There were 2 Errors\r\nView Log for details"});
}

TEST_F(Runner, ContinuousReplaysUntilStopped) {
    session.choose(Control::Continuous, true);
    pump.schedule(10'500, [&] { engine.cmd_cancel(); });
    EXPECT_EQ(play("CHK1   101\r\n;\r\n"), Outcome::Cancelled);
    EXPECT_GE(frames().size(), 4);
    EXPECT_EQ(lines().last(), "Script cancelled...");
    EXPECT_TRUE(op.notices.isEmpty()) << "no completion notice in continuous play";
}

TEST_F(Runner, CancelBetweenCommandsLeavesButtonsDisabledStopScriptRestoresThem) {
    struct Case {
        void (ScriptEngine::*stop)();
        bool buttonsBack;
    } cases[] = {{&ScriptEngine::cmd_cancel, false}, {&ScriptEngine::StopScript, true}};
    for (auto& c : cases) {
        restart();
        Q_EMIT session.link().connected();
        pump.schedule(500, [&] { (engine.*c.stop)(); });
        EXPECT_EQ(play("CHK1   101\r\nCHK1   102\r\n;\r\n"), Outcome::Cancelled);
        EXPECT_EQ(frames(), QStringList{"CHK1   101"}) << "the running command finishes";
        EXPECT_EQ(lines().last(), "Script cancelled...");
        EXPECT_EQ(enabled("Xtest"), c.buttonsBack);
        EXPECT_EQ(enabled("cmd_chk_in"), c.buttonsBack);
        EXPECT_FALSE(engine.stopScript());
    }
}

TEST_F(Runner, StopInsideAWaitEndsOnlyTheWait) {
    pump.schedule(3000, [&] { engine.StopScript(); });
    EXPECT_EQ(play("WAIT STS2   101 0\r\nCHK1   101\r\n;\r\n"), Outcome::Completed);
    EXPECT_EQ(frames(), QStringList{"CHK1   101"});
    EXPECT_FALSE(lines().contains("Script cancelled..."));
    EXPECT_FALSE(lines().contains("Time expired.  Did not receive--> sts2"));
}

TEST_F(Runner, ClosingTheConsoleInsideAWaitEndsTheScript) {
    // Closing presses CANCEL once and asks every wait to end; the wait clears CANCEL.
    for (const bool continuous : {false, true}) {
        restart();
        session.choose(Control::Continuous, continuous);
        int commands = 0;
        const auto guard = QObject::connect(&engine, &ScriptEngine::commandStarted, [&] {
            if (++commands > 20)
                session.choose(Control::Continuous,
                               false); // so a script that does not stop still returns
        });
        pump.schedule(2000, [&] {
            pump.requestStop();
            engine.cmd_cancel();
        });
        EXPECT_EQ(play("WAIT STS2   101 0\r\nCHK1   101\r\n;\r\n"), Outcome::Cancelled)
            << continuous;
        EXPECT_EQ(commands, 1) << continuous;
        EXPECT_TRUE(tcp.written.isEmpty()) << continuous;
        EXPECT_EQ(lines().last(), "Script cancelled...") << continuous;
        QObject::disconnect(guard);
        pump.clearStop();
    }
}

TEST_F(Runner, UnknownExpectationIsPassedOverAndReadFromMidLine) {
    // "NTFY ATL " is what a notice wait for "alt" records: not replayable.
    EXPECT_EQ(play("NTFY ATL   101 5\r\n;\r\n"), Outcome::Unrecognized);
    EXPECT_EQ(op.notices, QStringList{"Command: ATL "});
    EXPECT_FALSE(lines().contains("send notify for --> alt"));
}

TEST_F(Runner, UnreadableFileIsANoticeAndChangesNothing) {
    EXPECT_EQ(engine.runScriptFile(dir.filePath("missing.txt")), Outcome::NotRead);
    ASSERT_EQ(op.notices.size(), 1);
    EXPECT_TRUE(op.notices[0].startsWith("Cannot read script file")) << op.notices[0];
    EXPECT_TRUE(enabled("Xtest"));
    EXPECT_TRUE(session.log().logText().isEmpty());
}

TEST_F(Runner, RunScriptAsksForTheFile) {
    op.filesToOpen = {write("CHK1   101\r\n;\r\n")};
    engine.Xtest();
    EXPECT_EQ(frames(), QStringList{"CHK1   101"});
    op.notices.clear();
    engine.Xtest(); // cancelled dialog
    EXPECT_TRUE(op.notices.isEmpty());
}

TEST_F(Runner, VoiceMailLineWithoutTildeStopsAsAnUnrecognizedCommand) {
    session.link().setMode(session.link().pmsMode(), Protocol::His);
    const QByteArray checkIn = "\x02"
                               "24001  \x03"
                               "4";
    const QByteArray checkOut = "\x02"
                                "34001  \x03"
                                "5";
    QSignalSpy unrecognized(&engine, &ScriptEngine::unrecognizedCommand);
    // Line 3 lost its "~" and no line after it has one: there is no next command to find.
    EXPECT_EQ(play("VMAILHIS\r\n" + checkIn + "~\r\n" + checkOut + "\r\n;\r\n"),
              Outcome::Unrecognized);
    EXPECT_EQ(tcp.written, QList<QByteArray>({checkIn, checkOut}));
    EXPECT_EQ(op.notices, QStringList{"Command: 34001  <ETX>5"});
    ASSERT_EQ(unrecognized.size(), 1);
    EXPECT_EQ(unrecognized[0][0].toInt(), 3);
    EXPECT_TRUE(unrecognized[0][1].toString().contains("without \"~\""))
        << unrecognized[0][1].toString();
}

} // namespace
