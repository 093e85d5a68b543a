// A week-long soak in a minute: larkspur-run plays the hotel example again and again in a dry
// run with every report on; its resident memory at round 100 and at round 10,000 must be close.
#include "bench_common.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

namespace {

double residentMb(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_soak LARKSPUR-RUN HOTEL-EXAMPLE\n");
        return 64;
    }
    QTemporaryDir dir;
    const auto at = [&dir](const char* name) { return dir.filePath(QLatin1String(name)); };
    QProcess run;
    run.setStandardOutputFile(QProcess::nullDevice());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), dir.path());
    run.setProcessEnvironment(env);
    run.start(QString::fromLocal8Bit(argv[1]), {"--dry-run",
                                                "--continuous",
                                                "--no-settings",
                                                "--junit",
                                                at("report.xml"),
                                                "--save-log",
                                                at("traffic.log"),
                                                "--error-report",
                                                at("errors.txt"),
                                                "--trace",
                                                at("wire.txt"),
                                                QString::fromLocal8Bit(argv[2]),
                                                "--after",
                                                "CHK1",
                                                "1.5",
                                                "STS2   101",
                                                "--after",
                                                "WKP",
                                                "1.5",
                                                "MR 0001  101",
                                                "--after",
                                                "CHK0",
                                                "1.5",
                                                "<STX>RQINZ     <ETX>"});
    if (!run.waitForStarted())
        return 1;
    // Each round ends with one met wait for the status message. One read may hold the ends of
    // several rounds, so the count can pass 10,000 before it is looked at.
    const QByteArray roundEnd = "successfully received --> sts2";
    long rounds = 0;
    double at100 = 0, at10000 = 0;
    const double t0 = bench::now();
    QByteArray pending;
    while (rounds < 10'000 && run.state() == QProcess::Running) {
        run.waitForReadyRead(1000);
        pending += run.readAllStandardError();
        qsizetype end;
        while ((end = pending.indexOf('\n')) >= 0) {
            if (pending.left(end).contains(roundEnd) && ++rounds == 100)
                at100 = residentMb(run.processId());
            pending.remove(0, end + 1);
        }
    }
    at10000 = residentMb(run.processId());
    const double seconds = bench::now() - t0;
    ::kill(pid_t(run.processId()), SIGINT);
    run.waitForFinished(30'000);
    const double growth = at10000 - at100;
    bench::row("soak: dry run, every report, RSS round 100 / 10,000",
               bench::fmt("%.1f / %.1f MB (%+.1f)", at100, at10000, growth), "growth < 4 MB",
               rounds >= 10'000 && growth < 4);
    bench::row("soak: 10,000 rounds of the hotel example (250k commands)",
               bench::fmt("%.0f s", seconds), "-", rounds >= 10'000);
    return 0;
}
