// Start-up: from process start to the main window shown (offscreen), and peak memory. The
// parent starts itself as a child several times and takes the median.
#include "bench_common.h"

#include "assembly/assembly.h"
#include "console/main_window.h"
#include "console/widget_operator.h"

#include <QApplication>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <ctime>

namespace {

double realtime() {
    timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

int child(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QApplication app(argc, argv);
    QTemporaryDir dir;
    QSettings settings(dir.filePath(QStringLiteral("s.ini")), QSettings::IniFormat);
    larkspur::WidgetOperator op;
    larkspur::ProgramAssembly console(op, 100'000);
    larkspur::MainWindow window(console, settings);
    window.show();
    // Runs once the show and its first paint have been handled.
    QTimer::singleShot(0, [&] {
        std::printf("%.6f %.1f\n", realtime(), bench::peakRssMb());
        std::fflush(stdout);
        app.quit();
    });
    return app.exec();
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--child")
        return child(argc, argv);

    std::vector<double> ms, mb;
    for (int i = 0; i < 7; ++i) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        p.setProcessEnvironment(env);
        const double started = realtime();
        p.start(QString::fromLocal8Bit(argv[0]), {QStringLiteral("--child")});
        p.waitForFinished(30'000);
        double shown = 0, peak = 0;
        if (std::sscanf(p.readAllStandardOutput().constData(), "%lf %lf", &shown, &peak) != 2)
            return 1;
        ms.push_back((shown - started) * 1000);
        mb.push_back(peak);
    }
    const double m = bench::median(ms);
    bench::row("start-up: process start to main window shown", bench::fmt("%.0f ms", m), "< 300 ms",
               m < 300);
    bench::row("start-up: peak memory", bench::fmt("%.0f MB", bench::median(mb)), "-", true);
    return 0;
}
