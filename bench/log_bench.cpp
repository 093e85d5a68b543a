// The traffic log at scale: N lines through ShowDebug into the main window's display and the
// log viewer list, offscreen. Run once per size (a fresh process each) so memory is its own.
#include "bench_common.h"
#include "bench_window.h"

#include <QApplication>

namespace {

double rssMb() {
    FILE* f = std::fopen("/proc/self/status", "r");
    char line[256];
    double kb = 0;
    while (f && std::fgets(line, sizeof line, f))
        if (std::sscanf(line, "VmRSS: %lf kB", &kb) == 1)
            break;
    if (f)
        std::fclose(f);
    return kb / 1024.0;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const long lines = argc > 1 ? std::atol(argv[1]) : 10'000;

    bench::Window shown;
    larkspur::Session& session = shown.session;
    shown.window.show();
    QApplication::processEvents();

    const double rss0 = rssMb();
    const double t0 = bench::now();
    for (long i = 0; i < lines; ++i) {
        // 40 characters.
        session.log().logLine(
            QStringLiteral("Received--> STS1   %1 frame %2").arg(i % 1000, 5).arg(i, 9));
        // The window repaints as it would while traffic flows.
        if (i % 1000 == 999)
            QApplication::processEvents();
    }
    QApplication::processEvents();
    const double seconds = bench::now() - t0;
    const double mb = rssMb() - rss0;
    const double perLineUs = seconds * 1e6 / double(lines);
    bench::row(bench::fmt("traffic log: %.0f lines into display and viewer list", double(lines)),
               bench::fmt("%.2f s, %.2f us/line, +%.0f MB", seconds, perLineUs, mb),
               lines >= 1'000'000 ? "flat us/line, < 130 MB" : "flat us/line",
               lines < 1'000'000 || mb < 130);
    return 0;
}
