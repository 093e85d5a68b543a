// The link tap's added latency: a PMS bids for the line with ENQ and times the PBX's ACK, straight
// to the PBX and through larkspur-tap (tracing as always, its output thrown away), over loopback
// TCP and over pseudo-terminals. Both ends are minimal POSIX peers, so what the table shows is
// the relay's own cost. Five runs, each taking both paths in turn; the table gives medians over
// the runs.
#include "bench_common.h"
#include "bench_links.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace {

constexpr int roundTrips = 10'000;
constexpr int warmUp = 500;
constexpr int runs = 5;
const char enq = 5, ack = 6, eot = 4;

// The PBX: answers each ENQ with ACK, waiting in poll() as a program on an event loop does,
// until EOT or the end of the line.
void pbx(int fd) {
    char buffer[256];
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        ::poll(&p, 1, -1);
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n <= 0)
            return;
        for (ssize_t i = 0; i < n; ++i) {
            if (buffer[i] == eot)
                return;
            if (buffer[i] == enq) [[maybe_unused]]
                ssize_t w = ::write(fd, &ack, 1);
        }
    }
}

// The least any relay can do: wait in poll() on both ends and copy what one reads to the
// other, until either end closes or EOT has passed.
void minimalRelay(int a, int b) {
    char buffer[4096];
    for (;;) {
        pollfd p[2] = {{a, POLLIN, 0}, {b, POLLIN, 0}};
        ::poll(p, 2, -1);
        for (int i = 0; i < 2; ++i) {
            if (p[i].revents == 0)
                continue;
            const ssize_t n = ::read(p[i].fd, buffer, sizeof buffer);
            if (n <= 0)
                return;
            [[maybe_unused]] ssize_t w = ::write(p[1 - i].fd, buffer, size_t(n));
            if (std::memchr(buffer, eot, size_t(n)))
                return;
        }
    }
}

// The PMS: times each ENQ to its ACK, in microseconds.
std::vector<double> pms(int fd) {
    std::vector<double> rtt;
    rtt.reserve(roundTrips);
    for (int i = 0; i < warmUp + roundTrips; ++i) {
        const double t0 = bench::now();
        if (::write(fd, &enq, 1) != 1)
            break;
        char c = 0;
        while (::read(fd, &c, 1) == 1 && c != ack) {
        }
        if (c != ack)
            break;
        if (i >= warmUp)
            rtt.push_back((bench::now() - t0) * 1e6);
    }
    [[maybe_unused]] ssize_t w = ::write(fd, &eot, 1);
    return rtt;
}

uint16_t freePort() {
    uint16_t port = 0;
    ::close(bench::listenLoopback(port));
    return port;
}

// larkspur-tap with these arguments, its output thrown away.
pid_t startTap(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), LARKSPUR_TAP_PATH);
    std::vector<char*> argv;
    for (std::string& a : arguments)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

void stopTap(pid_t pid) {
    ::kill(pid, SIGTERM);
    ::waitpid(pid, nullptr, 0);
}

std::vector<double> tcpDirect() {
    uint16_t port = 0;
    const int listener = bench::listenLoopback(port);
    std::thread peer([listener] {
        const int fd = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        bench::noDelay(fd);
        pbx(fd);
        ::close(fd);
    });
    const int fd = bench::connectLoopback(port);
    auto rtt = pms(fd);
    peer.join();
    ::close(fd);
    ::close(listener);
    return rtt;
}

std::vector<double> tcpThroughTap() {
    uint16_t pbxPort = 0;
    const int listener = bench::listenLoopback(pbxPort);
    const uint16_t tapPort = freePort();
    const pid_t tap = startTap({"--listen", "127.0.0.1:" + std::to_string(tapPort), "--pbx",
                                "127.0.0.1:" + std::to_string(pbxPort)});
    std::thread peer([listener] {
        const int fd = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        bench::noDelay(fd);
        pbx(fd);
        ::close(fd);
    });
    const int fd = bench::connectLoopback(tapPort);
    auto rtt = pms(fd);
    peer.join();
    ::close(fd);
    ::close(listener);
    stopTap(tap);
    return rtt;
}

std::vector<double> tcpThroughMinimalRelay() {
    uint16_t pbxPort = 0, relayPort = 0;
    const int pbxListener = bench::listenLoopback(pbxPort);
    const int relayListener = bench::listenLoopback(relayPort);
    std::thread peer([pbxListener] {
        const int fd = ::accept4(pbxListener, nullptr, nullptr, SOCK_CLOEXEC);
        bench::noDelay(fd);
        pbx(fd);
        ::close(fd);
    });
    std::thread relay([relayListener, pbxPort] {
        const int fromPms = ::accept4(relayListener, nullptr, nullptr, SOCK_CLOEXEC);
        bench::noDelay(fromPms);
        const int toPbx = bench::connectLoopback(pbxPort);
        minimalRelay(fromPms, toPbx);
        ::close(fromPms);
        ::close(toPbx);
    });
    const int fd = bench::connectLoopback(relayPort);
    auto rtt = pms(fd);
    ::close(fd);
    peer.join();
    relay.join();
    ::close(pbxListener);
    ::close(relayListener);
    return rtt;
}

std::vector<double> ptyDirect() {
    bench::Pty line;
    std::thread peer([&] { pbx(line.slave); });
    auto rtt = pms(line.master);
    peer.join();
    return rtt;
}

std::vector<double> ptyThroughMinimalRelay() {
    bench::Pty toPms, toPbx;
    std::thread relay([&] { minimalRelay(toPms.slave, toPbx.slave); });
    std::thread peer([&] { pbx(toPbx.master); });
    auto rtt = pms(toPms.master);
    peer.join();
    relay.join();
    return rtt;
}

std::vector<double> ptyThroughTap() {
    bench::Pty toPms, toPbx;
    const pid_t tap =
        startTap({"--pms-serial", toPms.path, "--pbx-serial", toPbx.path, "--line", "9600,N,8,1"});
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the tap opens its ports
    std::thread peer([&] { pbx(toPbx.master); });
    auto rtt = pms(toPms.master);
    peer.join();
    stopTap(tap);
    return rtt;
}

} // namespace

int main() {
    // Each path's p50 and p99 per run.
    struct Path {
        std::vector<double> (*trips)();
        std::vector<double> p50 = {}, p99 = {};
        double run() {
            const auto rtt = trips();
            p50.push_back(bench::percentile(rtt, 0.5));
            p99.push_back(bench::percentile(rtt, 0.99));
            return p50.back();
        }
        std::string times() const {
            return bench::fmt("%.1f / %.1f us", bench::median(p50), bench::median(p99));
        }
    };
    struct Link {
        const char* name;
        Path direct, minimal, tap;
        std::vector<double> overDirect = {}, overMinimal = {}, addedUs = {};
    } links[] = {{"TCP", {tcpDirect}, {tcpThroughMinimalRelay}, {tcpThroughTap}},
                 {"pty", {ptyDirect}, {ptyThroughMinimalRelay}, {ptyThroughTap}}};
    // Side by side: in every run each link's paths follow each other, so a busy moment of the
    // machine weighs on all of them.
    for (int run = 0; run < runs; ++run) {
        for (Link& l : links) {
            const double direct = l.direct.run(), minimal = l.minimal.run(), tap = l.tap.run();
            l.overDirect.push_back(tap / direct);
            l.overMinimal.push_back(tap / minimal);
            l.addedUs.push_back(tap - direct);
        }
    }
    const auto ratioText = [](const std::vector<double>& ratios) {
        const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
        return bench::fmt("x%.2f (runs x%.2f to x%.2f)", bench::median(ratios), *low, *high);
    };
    for (const Link& l : links) {
        const std::string name = std::string("tap ") + l.name;
        bench::row(name + " direct ENQ/ACK p50/p99 (5 x 10k trips)", l.direct.times(), "baseline",
                   true);
        bench::row(name + " through a minimal poll() relay p50/p99", l.minimal.times(), "-", true);
        bench::row(name + " through larkspur-tap p50/p99", l.tap.times(), "-", true);
        bench::row(name + " added by larkspur-tap p50",
                   bench::fmt("+%.1f us", bench::median(l.addedUs)), "-", true);
        bench::row(name + " larkspur-tap / minimal relay p50", ratioText(l.overMinimal), "-", true);
        bench::row(name + " larkspur-tap / direct p50", ratioText(l.overDirect), "<= 1.2x",
                   bench::median(l.overDirect) <= 1.2);
    }
    return 0;
}
