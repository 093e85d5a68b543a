#pragma once

// Small helpers shared by the benchmark programs: clocks, medians, percentiles and the row
// format of the table that scripts/bench prints.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace bench {

inline double cpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

inline double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

inline double percentile(std::vector<double> v, double p) {
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const size_t i = std::min(v.size() - 1, size_t(p * double(v.size() - 1) + 0.5));
    return v[i];
}

inline double median(std::vector<double> v) {
    return percentile(std::move(v), 0.5);
}

// Peak resident memory of this process, in MB.
inline double peakRssMb() {
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f)
        return 0;
    char line[256];
    double kb = 0;
    while (std::fgets(line, sizeof line, f))
        if (std::sscanf(line, "VmHWM: %lf kB", &kb) == 1)
            break;
    std::fclose(f);
    return kb / 1024.0;
}

// One row of the table: what, measured, target, verdict.
inline void row(const std::string& what, const std::string& measured, const std::string& target,
                bool met) {
    std::printf("%-58s %-34s %-22s %s\n", what.c_str(), measured.c_str(), target.c_str(),
                met ? "ok" : "MISSED");
    std::fflush(stdout);
}

inline std::string fmt(const char* format, double a, double b = 0, double c = 0) {
    char buf[128];
    std::snprintf(buf, sizeof buf, format, a, b, c);
    return buf;
}

} // namespace bench
