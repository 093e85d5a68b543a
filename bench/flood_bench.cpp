// The window under a flood: 10,000 lines a second logged for five seconds into the main
// window, offscreen, after N lines already there; the longest the event loop went without
// turning is what an operator would feel as a stall.
#include "bench_common.h"
#include "bench_window.h"

#include "core/qt_event_pump.h"

#include <QApplication>
#include <QTimer>

namespace {
constexpr double linesPerSecond = 10'000;
constexpr double floodSeconds = 5;
constexpr int probeMs = 1;
} // namespace

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const long before = argc > 1 ? std::atol(argv[1]) : 0;

    bench::Window shown;
    larkspur::Session& session = shown.session;
    shown.window.show();

    long logged = 0;
    const auto logOne = [&] {
        session.log().logLine(
            QStringLiteral("Received--> STS1   %1 frame %2").arg(logged % 1000, 5).arg(logged, 9));
        ++logged;
    };
    while (logged < before)
        logOne();
    // The lines already there are shown before the flood starts.
    QTimer::singleShot(500, &app, &QApplication::quit);
    app.exec();

    // Lines arrive in small bursts, as a PBX's messages would, keeping up with the clock.
    const double t0 = bench::now();
    QTimer flood;
    flood.setTimerType(Qt::PreciseTimer);
    QObject::connect(&flood, &QTimer::timeout, [&] {
        const double due = (bench::now() - t0) * linesPerSecond;
        while (double(logged - before) < due)
            logOne();
        if (bench::now() - t0 >= floodSeconds)
            app.quit();
    });
    flood.start(5);

    // A timer that should fire every millisecond: the widest gap between two firings.
    double last = bench::now(), longest = 0;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const double t = bench::now();
        longest = std::max(longest, t - last);
        last = t;
    });
    probe.start(probeMs);
    app.exec();

    const double stallMs = longest * 1000.0;
    bench::row(
        bench::fmt("window: flood of 10,000 lines/s for 5 s after %.0f lines", double(before)),
        bench::fmt("longest stall %.1f ms (%.0f lines)", stallMs, double(logged - before)),
        "< 50 ms", stallMs < 50);
    return 0;
}
