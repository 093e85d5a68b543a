// larkspur-run against the real simulator over loopback TCP: exit statuses and output.
#include "common/pbxsim_process.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur::test;

namespace {

class Player : public ::testing::Test {
protected:
    QTemporaryDir home;
    QProcess run;
    QByteArray out, err;

    void SetUp() override {
        // A settings store of its own, so an engineer's stored settings never leak in.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", home.path());
        env.insert("XDG_CONFIG_HOME", home.path());
        run.setProcessEnvironment(env);
        QObject::connect(&run, &QProcess::readyReadStandardOutput,
                         [this] { out += run.readAllStandardOutput(); });
        QObject::connect(&run, &QProcess::readyReadStandardError,
                         [this] { err += run.readAllStandardError(); });
    }
    QString script(const QByteArray& content) {
        const QString path = home.filePath("script.txt");
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path;
    }
    void start(const QStringList& arguments) {
        run.start(QStringLiteral(LARKSPUR_RUN_PATH), arguments);
        ASSERT_TRUE(run.waitForStarted());
    }
    // Runs to the end (bounded) and gives the exit status.
    int finish(int timeoutMs = 120'000) {
        waitUntil([this] { return run.state() == QProcess::NotRunning; }, timeoutMs);
        if (run.state() != QProcess::NotRunning) {
            run.kill();
            run.waitForFinished();
            return -1;
        }
        return run.exitStatus() == QProcess::NormalExit ? run.exitCode() : -2;
    }
    QStringList outLines() const {
        return QString::fromLatin1(out).split('\n', Qt::SkipEmptyParts);
    }
    QStringList errLines() const {
        return QString::fromLatin1(err).split('\n', Qt::SkipEmptyParts);
    }
    QString tcp(const PbxSimProcess& sim) const {
        return QStringLiteral("127.0.0.1:%1").arg(sim.port());
    }
};

// The simulator options an example names in its "; simulator:" comment.
QStringList simulatorArguments(const QString& example) {
    QFile f(example);
    f.open(QIODevice::ReadOnly);
    for (const QString& line : QString::fromLatin1(f.readAll()).split("\r\n")) {
        const QString marker = "; simulator: larkspur-pbxsim";
        if (line.startsWith(marker))
            return QProcess::splitCommand(line.mid(marker.size()));
    }
    return {};
}

TEST_F(Player, ExamplesRunClean) {
    struct Case {
        const char* file;
        QStringList mustLog;
    } cases[] = {
        {"hotel.txt",
         {"successfully received --> sts2", "successfully received --> mr",
          "successfully received --> rti", "Sending     -->CHK1   101", "Sending   -->CHK0   101"}},
        {"vmail.txt", {"CHECK IN: 4001  ", "CHECK OUT: 4002  ", "PBX ACKed"}},
    };
    for (auto& c : cases) {
        const QString example = QStringLiteral(LARKSPUR_SOURCE_DIR "/examples/") + c.file;
        const QStringList simArgs = simulatorArguments(example);
        ASSERT_FALSE(simArgs.isEmpty()) << c.file;
        PbxSimProcess sim(simArgs);
        ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
        out.clear();
        err.clear();
        start({"--tcp", tcp(sim), example});
        EXPECT_EQ(finish(), 0) << c.file << "\n" << err.toStdString();
        EXPECT_EQ(errLines().last(), "larkspur-run: Script file completed") << c.file;
        for (const QString& line : c.mustLog)
            EXPECT_TRUE(outLines().contains(line)) << c.file << ": " << line.toStdString();
        EXPECT_FALSE(out.contains("Time expired")) << c.file;
        EXPECT_FALSE(out.contains("DID NOT")) << c.file;
        EXPECT_EQ(outLines().first(),
                  QString(c.file) == "vmail.txt" ? "Connecting..." : "Sending -->    ENQ");
        EXPECT_EQ(outLines().last(), "Disconnected...");
    }
}

TEST_F(Player, RefusedFramesExitOneWithTheCount) {
    PbxSimProcess sim({"--on-frame", "nak"});
    ASSERT_TRUE(sim.start());
    const QString junit = home.filePath("report.xml");
    start({"--tcp", tcp(sim), "--junit", junit, script("CHK0   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 1) << err.toStdString();
    EXPECT_EQ(errLines().last(),
              "larkspur-run: Script file ended!  There were 1 Errors View Log for details");
    QFile report(junit);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QByteArray xml = report.readAll();
    EXPECT_TRUE(xml.contains("tests=\"1\" failures=\"1\"")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("PBX DID NOT ACKnowkledge the Check out message:"));
}

TEST_F(Player, UnreachablePortExitsTwoWithinTheTimeout) {
    QElapsedTimer clock;
    clock.start();
    start({"--tcp", "127.0.0.1:1", "--connect-timeout", "2", script("CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(30'000), 2);
    EXPECT_LT(clock.elapsed(), 15'000);
    EXPECT_TRUE(err.contains("no connection to 127.0.0.1:1")) << err.toStdString();
}

TEST_F(Player, StopExitsThree) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start());
    start({"--tcp", tcp(sim), script("STOP\r\n;\r\n")});
    EXPECT_EQ(finish(), 3);
    EXPECT_TRUE(errLines().contains("larkspur-run: Command: STOP"));
    EXPECT_TRUE(outLines().contains("Script file error! Unrecognized command"));
}

TEST_F(Player, InterruptCancelsTheScript) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start());
    start({"--tcp", tcp(sim), script("WAIT STS1   101 0\r\nCHK1   101\r\n;\r\n")});
    ASSERT_TRUE(waitUntil([this] { return out.contains("waiting for --> sts1"); }, 20'000))
        << out.toStdString();
    ::kill(pid_t(run.processId()), SIGINT);
    EXPECT_EQ(finish(20'000), 130);
    EXPECT_TRUE(outLines().contains("Script cancelled...")) << out.toStdString();
    EXPECT_FALSE(out.contains("CHK1   101")) << "nothing plays after the interrupt";
}

TEST_F(Player, BadArgumentsAndUnreadableScripts) {
    struct Case {
        QStringList arguments;
        int status;
    } cases[] = {
        {{}, 64},
        {{"--bogus", "x"}, 64},
        {{"--tcp", "nohost", "x"}, 64},
        {{"--mode", "hotel", "x"}, 64},
        {{home.filePath("missing.txt")}, 3},
        {{"--help"}, 0},
    };
    for (auto& c : cases) {
        out.clear();
        err.clear();
        start(c.arguments);
        EXPECT_EQ(finish(), c.status) << c.arguments.join(' ').toStdString();
        if (c.status == 64) {
            EXPECT_TRUE(err.contains("usage: larkspur-run")) << err.toStdString();
        }
    }
}

} // namespace
