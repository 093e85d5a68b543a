// CPU time the console spends while it waits, and how long each specified wait really lasts.
#include "bench_common.h"
#include "bench_console.h"
#include "core/qt_event_pump.h"
#include "link/exchange.h"

#include "core/pause.h"
#include "script/expectation_waits.h"

#include <QCoreApplication>

#include <functional>

namespace {

struct Wait {
    const char* name;
    double seconds;
    double toleranceMs;
    int runs;
    std::function<void(bench::Console&)> run;
};

} // namespace

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QCoreApplication app(argc, argv);
    using larkspur::Session;
    const Wait waits[] = {
        {"wait_for_ack time-out", 5.0, 5, 3,
         [](bench::Console& c) { wait_for_ack(c.session.link(), false); }},
        {"expected-message wait (WAIT sts1 5)", 5.0, 20, 3,
         [](bench::Console& c) {
             bool stopScript = false;
             larkspur::runExpectationWait(c.session, larkspur::WaitKind::Plain,
                                          QStringLiteral("sts1"), QStringLiteral("5"), stopScript);
         }},
        {"voice-mail answer pause", 2.0, 20, 5,
         [](bench::Console& c) {
             larkspur::sendVmailFrame(c.session.link(),
                                      QStringLiteral("\x02"
                                                     "24001  \x03"
                                                     "4"),
                                      QStringLiteral("CHECK IN: 4001"), false);
         }},
        {"script pacing pause", 1.0, 20, 5,
         [](bench::Console& c) { larkspur::pause_seconds(c.pump, 1.0f); }},
        {"wait_for_ack poll step", 0.1, 20, 9,
         [](bench::Console& c) { larkspur::pause_seconds(c.pump, 0.1f); }},
    };
    bench::Console console;
    for (const Wait& w : waits) {
        std::vector<double> wall, cpu;
        for (int i = 0; i < w.runs; ++i) {
            const double c0 = bench::cpuSeconds(), t0 = bench::now();
            w.run(console);
            wall.push_back(bench::now() - t0);
            cpu.push_back(bench::cpuSeconds() - c0);
        }
        const double length = bench::median(wall);
        const double share = 100.0 * bench::median(cpu) / length;
        const double errorMs = (length - w.seconds) * 1000.0;
        bench::row(std::string("CPU while waiting: ") + w.name,
                   bench::fmt("%.3f %% of a core", share), "< 1 %", share < 1.0);
        bench::row(std::string("duration: ") + w.name + bench::fmt(" (%.1f s)", w.seconds),
                   bench::fmt("%.4f s (%+.1f ms)", length, errorMs),
                   bench::fmt("+/- %.0f ms", w.toleranceMs),
                   errorMs >= -w.toleranceMs && errorMs <= w.toleranceMs);
    }
    return 0;
}
