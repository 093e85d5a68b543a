// larkspur-run when reality leans on it: scripts that are pipes, FIFOs, devices or huge; a PBX
// that hangs up; reports that cannot be written. Every way out ends cleanly, reports written.
#include "common/peak_memory.h"
#include "common/player_fixture.h"

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

extern char** environ;

using namespace larkspur::test;

namespace {

class PlayerHostile : public PlayerFixture {
protected:
    // larkspur-run started by bash, so that a script can be a process substitution.
    void startInShell(const QString& command, const QStringList& arguments) {
        run.start("bash", QStringList{"-c", command, LARKSPUR_RUN_PATH} + arguments);
        ASSERT_TRUE(run.waitForStarted());
    }
    QByteArray contentOf(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
    }
};

TEST_F(PlayerHostile, ReadsAPipeOrAFifoOnce) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start());
    startInShell(R"(exec "$0" --tcp "$1" <(printf 'CHK1   101\r\n;\r\n'))", {tcp(sim)});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_TRUE(out.contains("Sending     -->CHK1   101")) << out.toStdString();

    const QString fifo = home.filePath("fifo");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    out.clear();
    start({"--tcp", tcp(sim), fifo});
    QFile writer(fifo);
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly)); // until the player opens it
    writer.write("CHK0   102\r\n;\r\n");
    writer.close();
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_TRUE(out.contains("Sending   -->CHK0   102")) << out.toStdString();
}

TEST_F(PlayerHostile, SignalWhileTheScriptIsOpenedEndsWith130) {
#ifdef LARKSPUR_PORTABLE
    GTEST_SKIP() << "cutting a blocked open short takes POSIX signals; where there are none, "
                    "there are no FIFOs either";
#endif
    const QString fifo = home.filePath("nobody-writes");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    start({"--tcp", "127.0.0.1:1", fifo});
    ::usleep(300'000); // blocked in the open: nobody writes the FIFO
    ::kill(pid_t(run.processId()), SIGTERM);
    EXPECT_EQ(finish(10'000), 130);
}

TEST_F(PlayerHostile, OutputsThatCannotBeWrittenAreRefusedBeforeConnecting) {
    PbxSimProcess sim;
    ASSERT_TRUE(sim.start());
    const QString script = file("s.txt", "CHK1   101\r\n;\r\n");
    const struct {
        QStringList options;
        const char* says;
    } cases[] = {
        {{"--junit", home.filePath("no/such/folder/r.xml")}, "does not exist"},
        {{"--save-log", home.path()}, "folder"},
        {{"--trace", script}, "is the script itself"},
        {{"--error-report", script}, "is the script itself"},
        {{"--junit", home.filePath("r.xml"), "--save-log", home.filePath("r.xml")},
         "name the same file"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options.join(' ').toStdString());
        err.clear();
        start(c.options + QStringList{"--tcp", tcp(sim), script});
        EXPECT_EQ(finish(), 64);
        EXPECT_TRUE(err.contains(c.says)) << err.toStdString();
    }
    EXPECT_EQ(contentOf(script), "CHK1   101\r\n;\r\n") << "the script is left as it was";
    EXPECT_TRUE(sim.statusLines().filter("# connected").isEmpty()) << "nothing was connected";
}

TEST_F(PlayerHostile, NoLinkStillWritesEveryReport) {
    const QString junit = home.filePath("r.xml"), log = home.filePath("t.log"),
                  errors = home.filePath("e.txt");
    start({"--tcp", "127.0.0.1:1", "--connect-timeout", "0.5", "--junit", junit, "--save-log", log,
           "--error-report", errors, file("s.txt", "CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 2);
    EXPECT_TRUE(err.contains("no connection to 127.0.0.1:1")) << err.toStdString();
    const QByteArray xml = contentOf(junit);
    EXPECT_TRUE(xml.contains("tests=\"1\" failures=\"1\"")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("connect TCP 127.0.0.1:1")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("no connection to 127.0.0.1:1 within 0.5 s")) << xml.toStdString();
    EXPECT_EQ(contentOf(log), "Disconnected...\r\n");
    EXPECT_EQ(contentOf(errors), "");
}

// A PBX that answers the line bids and hangs up on the `hangUpOn`th byte it is sent of `kind`.
class HangingUpPbx : public QObject {
public:
    HangingUpPbx(char kind, int hangUpOn) : m_kind(kind), m_hangUpOn(hangUpOn) {
        m_server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&m_server, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* s = m_server.nextPendingConnection();
            QObject::connect(s, &QTcpSocket::readyRead, s, [this, s] {
                for (const char byte : s->readAll()) {
                    if (byte == m_kind && ++m_seen == m_hangUpOn) {
                        s->abort();
                        return;
                    }
                    if (byte == '\x05' || byte == '\x03')
                        s->write("\x06");
                }
            });
        });
    }
    QString address() const { return "127.0.0.1:" + QString::number(m_server.serverPort()); }

private:
    QTcpServer m_server;
    char m_kind;
    int m_hangUpOn;
    int m_seen = 0;
};

TEST_F(PlayerHostile, LostLinkEndsTheRunAtOnceWithItsReports) {
    HangingUpPbx pbx('\x02', 2); // hangs up on the second frame
    const QString junit = home.filePath("r.xml"), log = home.filePath("t.log");
    start({"--tcp", pbx.address(), "--junit", junit, "--save-log", log,
           file("s.txt", "CHK1   101\r\nCHK0   101\r\nWAIT STS2   101 0\r\nCHK1   102\r\n;\r\n")});
    EXPECT_EQ(finish(20'000), 4) << err.toStdString();
    EXPECT_TRUE(err.contains("larkspur-run: link lost")) << err.toStdString();
    EXPECT_FALSE(out.contains("waiting for --> sts2")) << out.toStdString();
    EXPECT_TRUE(out.endsWith("Disconnected...\n")) << out.toStdString();
    const QByteArray xml = contentOf(junit);
    EXPECT_TRUE(xml.contains("tests=\"2\" failures=\"1\"")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("link lost")) << xml.toStdString();
    EXPECT_TRUE(contentOf(log).contains("Sending     -->CHK1   101"));
}

TEST_F(PlayerHostile, ResetDuringTheConnectionTestIsALostLink) {
    HangingUpPbx pbx('\x05', 1);
    start({"--tcp", pbx.address(), file("s.txt", "CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(30'000), 4) << err.toStdString();
    EXPECT_FALSE(out.contains("No response from PBX")) << out.toStdString();
}

TEST_F(PlayerHostile, Ipv6Loopback) {
    PbxSimProcess sim({"--listen", "[::1]:0"});
    ASSERT_TRUE(sim.start()) << sim.diagnostics().toStdString();
    start({"--tcp", QStringLiteral("[::1]:%1").arg(sim.port()),
           file("s.txt", "CHK1   101\r\n;\r\n")});
    EXPECT_EQ(finish(), 0) << err.toStdString();
    EXPECT_TRUE(sim.statusLines().filter("# connected tcp ::1:").size() == 1)
        << sim.diagnostics().toStdString();
}

TEST_F(PlayerHostile, VoiceMailLineWithoutTildeIsNamed) {
    start({"--dry-run",
           file("s.txt", "VMAILHIS\r\n\x02"
                         "24001  \x03"
                         "4~\r\n\x02"
                         "34001  \x03"
                         "5\r\n;\r\n"),
           "--mode", "VMAIL"});
    EXPECT_EQ(finish(), 3) << err.toStdString();
    EXPECT_TRUE(err.contains("larkspur-run: line 3: a voice-mail line without \"~\""))
        << err.toStdString();
    EXPECT_TRUE(out.contains("Script file error! Unrecognized command"));
    EXPECT_FALSE(err.contains("Script file completed"));
}

TEST_F(PlayerHostile, CheckInTakenOnAStaleAckFailsInJunit) {
    const QString junit = home.filePath("r.xml");
    start({"--dry-run", "--junit", junit, file("s.txt", "CHK1   101\r\n;\r\n"), "--on-frame",
           "silent"});
    // The console counts it acknowledged, as its rules say; the run still tells that it failed.
    EXPECT_EQ(finish(), 1);
    const QByteArray xml = contentOf(junit);
    EXPECT_TRUE(xml.contains("tests=\"1\" failures=\"1\"")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("never acknowledged")) << xml.toStdString();
}

// The peak resident memory of larkspur-run reading `script` (it then finds no PBX and exits 2).
long peakKilobytesReading(const QString& script, const QString& home) {
    return peakKilobytesOfRun(
        {"--tcp", "127.0.0.1:1", "--connect-timeout", "0.1", QFile::encodeName(script)}, home, 2);
}

TEST_F(PlayerHostile, ReadingABigScriptCostsAtMostThreeTimesItsSize) {
#ifdef LARKSPUR_SANITIZE
    GTEST_SKIP() << "the sanitizers' shadow memory would count in";
#endif
    QByteArray big;
    const QByteArray line = "NAM1 Smith                  101\r\n";
    big.reserve(50 * 1024 * 1024);
    while (big.size() + line.size() <= 50 * 1024 * 1024)
        big += line;
    const QString bigScript = file("big.txt", big);
    const long baseline =
        peakKilobytesReading(file("small.txt", "CHK1   101\r\n;\r\n"), home.path());
    const long peak = peakKilobytesReading(bigScript, home.path());
    ASSERT_GT(baseline, 0);
    ASSERT_GT(peak, 0);
    EXPECT_LE(peak - baseline, 3 * big.size() / 1024)
        << "peak " << peak << " KB, baseline " << baseline << " KB, script " << big.size() / 1024
        << " KB";
}

} // namespace
