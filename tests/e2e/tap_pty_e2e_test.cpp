// larkspur-tap on serial ports, played by pseudo-terminals: the serial relay between larkspur-run
// and larkspur-pbxsim, the passive monitor on a Y-cable, and each side hanging up.
#include "common/qt_printers.h"
#include "learned_replay.h"
#include "protocol/readable_notation.h"
#include "tap_cable.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur;
using namespace larkspur::test;

namespace {

const QByteArray playedScript = "CHK1   101\r\n"
                                "WAIT STS2   101 2\r\n"
                                "NAM1 Smith                  101\r\n"
                                "CHK0   101\r\n"
                                "; the last line never plays\r\n";
const QByteArray learnedScript = "CHK1   101\r\n"
                                 "WAIT STS2   101 2\r\n"
                                 "NAM1 Smith                  101\r\n"
                                 "CHK0   101\r\n";
const int learnedCommands = 4;
// The status comes 1.5 s after the check-in, trickled at 1200 baud.
const QStringList simArguments = {"--pty",      "--after",      "CHK1", "1.5",
                                  "STS2   101", "--line-speed", "1200"};
// A frame's bytes may come far apart on a busy test machine: the tap and the player both wait a
// second before they take a frame whose end has not come for a piece of garbage.
const QStringList patientFrames = {"--frame-gap", "1000"};

class TapOverPtys : public LearnedReplay {
protected:
    const QString learnedPath = home.filePath("learned.txt");

    // Plays `played` with larkspur-run on `port` through the serial relay to `sim`: what the
    // PBX heard.
    QByteArray relay(const QString& port, PbxSimProcess& sim, TapProcess& tap,
                     const QByteArray& played) {
        start(QStringList{"--serial", port, "--line", "9600,N,8,1", script(played)} +
              patientFrames);
        EXPECT_EQ(finish(), 0) << err.toStdString() << tap.diagnostics();
        sim.stop();
        return bytesOf(sim.traceLines(), "RX");
    }

    // Plays the script with larkspur-run on `port`, and checks what crossed and what was learned.
    void play(const QString& port, PbxSimProcess& sim, TapProcess& tap) {
        const QString runTrace = home.filePath("run-trace.txt");
        start(QStringList{"--serial", port, "--line", "9600,N,8,1", "--trace", runTrace,
                          script(playedScript)} +
              patientFrames);
        EXPECT_EQ(finish(), 0) << err.toStdString() << tap.diagnostics();
        EXPECT_TRUE(outLines().contains("successfully received --> sts2")) << out.toStdString();
        ASSERT_TRUE(tap.waitForLine(QStringLiteral("PMS>PBX <STX>CHK0   101<ETX>   ; check-out "
                                                   "room 101")))
            << tap.diagnostics();
        EXPECT_TRUE(tap.lines().contains("PBX>PMS <STX>STS2   101<ETX>   ; STS2 room 101"))
            << tap.diagnostics();

        QFile trace(runTrace);
        ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
        const QStringList runRows = QString::fromLatin1(trace.readAll()).split(u'\n');
        ASSERT_TRUE(sim.waitForTraceLines(4));
        EXPECT_TRUE(bytesOf(sim.traceLines(), "RX") == bytesOf(runRows, "TX"));
        EXPECT_TRUE(waitUntil([&] {
            return bytesOf(runRows, "RX") == bytesOf(sim.traceLines(), "TX");
        })) << tap.diagnostics();
    }
};

TEST_F(TapOverPtys, TheSerialRelayPassesEverythingAndLearnsTheScript) {
    PbxSimProcess sim(simArguments);
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    TapCable cable;
    const int pmsPort = cable.addPty(), tapPmsPort = cable.addPty();
    cable.route(pmsPort, tapPmsPort);
    cable.route(tapPmsPort, pmsPort);
    cable.start();
    TapProcess tap(QStringList{"--pms-serial", cable.path(tapPmsPort), "--pbx-serial",
                               sim.ptyPath(), "--learn", learnedPath, "--learn-waits", "--once"} +
                   patientFrames);
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    EXPECT_EQ(tap.lines().value(0),
              QStringLiteral("-- serial relay between the PMS on %1 and the PBX on %2 at "
                             "9600,N,8,1")
                  .arg(cable.path(tapPmsPort), sim.ptyPath()));
    play(cable.path(pmsPort), sim, tap);

    // The PMS's line goes dead: the session ends and, told to, the tap with it.
    cable.hangUp(tapPmsPort);
    EXPECT_EQ(tap.waitForExit(), 0) << tap.diagnostics();
    EXPECT_EQ(tap.lines().filter(QRegularExpression("^-- the PMS hung up \\(serial ")).size(), 1)
        << tap.diagnostics();
    EXPECT_EQ(learnedLines(learnedPath, learnedCommands), learnedScript) << tap.diagnostics();

    // Played back over a serial line, the learned script says to the PBX what the PMS said,
    // the check-out too, and meets its wait again.
    sim.stop();
    const QByteArray heard = bytesOf(sim.traceLines(), "RX");
    EXPECT_TRUE(heardReplaying(learnedPath, simArguments, true) == heard);
    EXPECT_TRUE(outLines().contains("Sending   -->CHK0   101")) << out.toStdString();
    EXPECT_TRUE(outLines().contains("successfully received --> sts2")) << out.toStdString();
}

TEST_F(TapOverPtys, AVoiceMailScriptLearnedOnTheSerialRelayReplaysWhole) {
    // A check-in and a check-out of a mailbox, each frame with its check character.
    const QByteArray played = "VMAILHIS\r\n"
                              "\x02"
                              "24001  \x03"
                              "4~\r\n"
                              "\x02"
                              "34001  \x03"
                              "5~\r\n";
    PbxSimProcess sim({"--pty", "--mode", "VMAIL"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    TapCable cable;
    const int pmsPort = cable.addPty(), tapPmsPort = cable.addPty();
    cable.route(pmsPort, tapPmsPort);
    cable.route(tapPmsPort, pmsPort);
    cable.start();
    TapProcess tap(QStringList{"--pms-serial", cable.path(tapPmsPort), "--pbx-serial",
                               sim.ptyPath(), "--mode", "VMAIL", "--protocol", "HIS", "--learn",
                               learnedPath} +
                   patientFrames);
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    const QByteArray heard = relay(cable.path(pmsPort), sim, tap, played + ";\r\n");
    ASSERT_TRUE(waitUntil([&] { return contents(learnedPath).contains("34001  \x03"); }, 10'000))
        << tap.diagnostics();
    EXPECT_EQ(learnedLines(learnedPath, 2), played);
    // Ended first: a tap that reopened its PBX port could open the next simulator's pty, which
    // may get the same number, and read the answers meant for the replay.
    EXPECT_EQ(tap.stop(SIGTERM), 130) << tap.diagnostics();
    EXPECT_TRUE(heardReplaying(learnedPath, {"--mode", "VMAIL"}, true) == heard);
    EXPECT_TRUE(outLines().contains("CHECK OUT: 4001  ")) << out.toStdString();
}

TEST_F(TapOverPtys, APbxThatHangsUpEndsTheSessionAndThePortsAreOpenedAgain) {
    // Through a link of the simulator's, which goes with it: the pty's own number is soon
    // another's.
    const QString simPort = home.filePath("pbx");
    auto sim = std::make_unique<PbxSimProcess>(QStringList{"--pty", simPort});
    ASSERT_TRUE(sim->start()) << sim->diagnostics().toStdString();
    TapCable cable;
    const int tapPmsPort = cable.addPty();
    cable.start();
    TapProcess tap({"--pms-serial", cable.path(tapPmsPort), "--pbx-serial", simPort});
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    cable.send(tapPmsPort, "\x05");
    ASSERT_TRUE(waitUntil([&] { return cable.heard(tapPmsPort) == "\x06"; })) << tap.diagnostics();
    sim.reset();
    ASSERT_TRUE(tap.waitForLine(QStringLiteral("trying again every second"))) << tap.diagnostics();
    const QStringList lines = tap.lines();
    EXPECT_EQ(lines.filter(QRegularExpression("^-- the PBX hung up \\(serial ")).size(), 1)
        << tap.diagnostics();
    EXPECT_TRUE(lines.contains("-- opening the ports again")) << tap.diagnostics();
    EXPECT_TRUE(lines.contains("-- cannot open the PBX port " + simPort +
                               ": No such file or directory; trying again every second"))
        << tap.diagnostics();
    EXPECT_EQ(tap.stop(SIGTERM), 130);
}

TEST_F(TapOverPtys, ThePassiveMonitorHearsBothSidesAndSendsNothing) {
    PbxSimProcess sim(simArguments);
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    // The PMS and the PBX wired to each other, each direction branching off to a port of its own.
    TapCable cable;
    const int pmsPort = cable.addPty(), pbx = cable.addDevice(sim.ptyPath());
    const int hearsPms = cable.addPty(), hearsPbx = cable.addPty();
    cable.route(pmsPort, pbx);
    cable.route(pmsPort, hearsPms);
    cable.route(pbx, pmsPort);
    cable.route(pbx, hearsPbx);
    cable.start();
    TapProcess tap(QStringList{"--monitor-pms", cable.path(hearsPms), "--monitor-pbx",
                               cable.path(hearsPbx), "--learn", learnedPath, "--learn-waits",
                               "--once"} +
                   patientFrames);
    ASSERT_TRUE(tap.start()) << tap.diagnostics();
    EXPECT_EQ(tap.lines().value(0), QStringLiteral("-- monitor hearing the PMS on %1 and the PBX "
                                                   "on %2 at 9600,N,8,1, sending nothing")
                                        .arg(cable.path(hearsPms), cable.path(hearsPbx)));
    play(cable.path(pmsPort), sim, tap);
    EXPECT_EQ(cable.heard(hearsPms), "");
    EXPECT_EQ(cable.heard(hearsPbx), "");

    cable.hangUp(hearsPms);
    EXPECT_EQ(tap.waitForExit(), 0) << tap.diagnostics();
    EXPECT_EQ(tap.lines().filter(QRegularExpression("^-- the PMS hung up \\(serial ")).size(), 1)
        << tap.diagnostics();
    EXPECT_EQ(learnedLines(learnedPath, learnedCommands), learnedScript) << tap.diagnostics();
}

} // namespace
