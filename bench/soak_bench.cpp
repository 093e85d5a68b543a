// A week-long soak in a minute, and ten minutes of a real one. larkspur-run plays the hotel
// example again and again with every report on: in a dry run, where its resident memory at round
// 100 and at round 10,000 must be close; and over TCP against larkspur-pbxsim in real time, where
// it must not grow between the first and the last minute.
#include "bench_common.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

namespace {

// What the simulator answers to the hotel example's waits.
const QStringList followUps = {"--after", "CHK1", "1.5", "STS2   101",
                               "--after", "WKP",  "1.5", "MR 0001  101",
                               "--after", "CHK0", "1.5", "<STX>RQINZ     <ETX>"};
// Each round of the example ends with one met wait for the status message.
const QByteArray roundEnd = "successfully received --> sts2";

double residentKb(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble();
    return 0;
}

// larkspur-run with every report on, in a home of its own; its traffic log is dropped.
void startPlayer(QProcess& run, const QTemporaryDir& dir, const QString& program,
                 const QStringList& arguments) {
    const auto at = [&dir](const char* name) { return dir.filePath(QLatin1String(name)); };
    run.setStandardOutputFile(QProcess::nullDevice());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), dir.path());
    run.setProcessEnvironment(env);
    run.start(program, QStringList{"--continuous", "--no-settings", "--junit", at("report.xml"),
                                   "--save-log", at("traffic.log"), "--error-report",
                                   at("errors.txt"), "--trace", at("wire.txt")} +
                           arguments);
}

// Counts the rounds the player's notices tell of.
class RoundCounter {
public:
    explicit RoundCounter(QProcess& run) : m_run(run) {}
    long rounds() const { return m_rounds; }
    // Reads what the player said within `ms`; calls `onRound` with each round's number.
    template <typename F> void read(int ms, F onRound) {
        m_run.waitForReadyRead(ms);
        m_pending += m_run.readAllStandardError();
        qsizetype end;
        while ((end = m_pending.indexOf('\n')) >= 0) {
            if (m_pending.left(end).contains(roundEnd))
                onRound(++m_rounds);
            m_pending.remove(0, end + 1);
        }
    }

private:
    QProcess& m_run;
    QByteArray m_pending;
    long m_rounds = 0;
};

void dryRunSoak(const QString& player, const QString& example) {
    QTemporaryDir dir;
    QProcess run;
    startPlayer(run, dir, player, QStringList{"--dry-run", example} + followUps);
    if (!run.waitForStarted())
        return;
    // One read may hold the ends of several rounds, so the count can pass 10,000 before it is
    // looked at.
    RoundCounter counter(run);
    double at100 = 0;
    const double t0 = bench::now();
    while (counter.rounds() < 10'000 && run.state() == QProcess::Running)
        counter.read(1000, [&](long round) {
            if (round == 100)
                at100 = residentKb(run.processId()) / 1024.0;
        });
    const double at10000 = residentKb(run.processId()) / 1024.0;
    const double seconds = bench::now() - t0;
    ::kill(pid_t(run.processId()), SIGINT);
    run.waitForFinished(30'000);
    const double growth = at10000 - at100;
    const bool reached = counter.rounds() >= 10'000;
    bench::row("soak: dry run, every report, RSS round 100 / 10,000",
               bench::fmt("%.1f / %.1f MB (%+.1f)", at100, at10000, growth), "growth < 4 MB",
               reached && growth < 4);
    bench::row("soak: 10,000 rounds of the hotel example (250k commands)",
               bench::fmt("%.0f s", seconds), "-", reached);
}

// The simulator on an ephemeral loopback port; 0 when it did not come up.
quint16 startSimulator(QProcess& sim, const QString& program) {
    sim.setStandardInputFile(QProcess::nullDevice());
    sim.start(program, QStringList{"--listen", "127.0.0.1:0"} + followUps);
    QByteArray output;
    while (sim.waitForReadyRead(10'000)) {
        output += sim.readAllStandardOutput();
        for (const QByteArray& line : output.split('\n'))
            if (line.startsWith("# listening "))
                return quint16(line.mid(line.lastIndexOf(':') + 1).toUInt());
    }
    return 0;
}

void realSoak(const QString& player, const QString& simulator, const QString& example,
              int minutes) {
    QProcess sim;
    const quint16 port = startSimulator(sim, simulator);
    if (port == 0) {
        bench::row("soak: real run over TCP", "the simulator did not start", "-", false);
        return;
    }
    QTemporaryDir dir;
    QProcess run;
    startPlayer(
        run, dir, player,
        {"--tcp", QStringLiteral("127.0.0.1:%1").arg(port), "--connect-timeout", "10", example});
    if (!run.waitForStarted())
        return;
    RoundCounter counter(run);
    double firstMinute = 0;
    const double t0 = bench::now();
    const double end = t0 + 60.0 * minutes;
    while (bench::now() < end && run.state() == QProcess::Running) {
        counter.read(1000, [](long) {});
        sim.readAllStandardOutput(); // its trace of every byte, not kept
        if (firstMinute == 0 && bench::now() - t0 >= 60)
            firstMinute = residentKb(run.processId());
    }
    const double last = residentKb(run.processId());
    const bool ran = run.state() == QProcess::Running && firstMinute > 0;
    ::kill(pid_t(run.processId()), SIGINT);
    run.waitForFinished(30'000);
    sim.terminate();
    sim.waitForFinished(10'000);
    const double growth = last - firstMinute;
    bench::row(bench::fmt("soak: real run over TCP, every report, RSS minute 1 / %.0f", minutes),
               bench::fmt("%.0f / %.0f KB (%+.0f)", firstMinute, last, growth), "growth < 32 KB",
               ran && growth < 32);
    bench::row(bench::fmt("soak: real run over TCP, %.0f minutes of the hotel example", minutes),
               bench::fmt("%.0f rounds", double(counter.rounds())), "-", ran);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: bench_soak LARKSPUR-RUN LARKSPUR-PBXSIM HOTEL-EXAMPLE "
                             "[MINUTES]\n");
        return 64;
    }
    const QString player = QString::fromLocal8Bit(argv[1]);
    const QString example = QString::fromLocal8Bit(argv[3]);
    const int minutes = argc > 4 ? qMax(2, std::atoi(argv[4])) : 10;
    dryRunSoak(player, example);
    realSoak(player, QString::fromLocal8Bit(argv[2]), example, minutes);
    return 0;
}
