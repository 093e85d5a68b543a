// Wall time and CPU time of real pauses on the Qt pump: a pause must keep its length and must not
// keep a core busy while it waits.
#include "link/pause.h"
#include "link/qt_event_pump.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

double cpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    larkspur::QtEventPump pump;
    const int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 7;

    std::printf("%-22s %6s %12s %12s %10s %10s\n", "pause_seconds", "runs", "wall median", "error",
                "cpu median", "cpu/core");
    for (float seconds : {1.0f, 0.1f}) {
        std::vector<double> wall, cpu;
        for (int i = 0; i < runs; ++i) {
            const auto w0 = std::chrono::steady_clock::now();
            const double c0 = cpuSeconds();
            larkspur::pause_seconds(pump, seconds);
            cpu.push_back(cpuSeconds() - c0);
            wall.push_back(
                std::chrono::duration<double>(std::chrono::steady_clock::now() - w0).count());
        }
        const double w = median(wall), c = median(cpu);
        std::printf("%-22s %6d %10.4f s %+9.2f ms %8.3f ms %9.3f %%\n",
                    seconds == 1.0f ? "pause_seconds(1.0)" : "pause_seconds(0.1)", runs, w,
                    (w - seconds) * 1000.0, c * 1000.0, 100.0 * c / w);
    }
    return 0;
}
