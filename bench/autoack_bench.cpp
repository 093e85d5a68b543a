// Auto-answer latency: a peer sends a status frame and times the console's ACK, over loopback TCP
// and over a pty, beside a minimal blocking responder that marks the physical limit. Five runs,
// each with both links and both answerers; the table gives medians over the runs. Last, a frame
// trickled over the pty byte by byte at 9600 baud, as a serial line delivers it.
#include "bench_common.h"
#include "bench_console.h"
#include "bench_links.h"
#include "core/qt_event_pump.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

const char statusFrame[] = "\x02STS1   101\x03";
constexpr int roundTrips = 10'000;
constexpr int runs = 5;
constexpr int trickledFrames = 1'000;

bool readByte(int fd, char wanted) {
    char c = 0;
    for (;;) {
        const ssize_t n = ::read(fd, &c, 1);
        if (n <= 0)
            return false;
        if (c == wanted)
            return true;
    }
}

// Grants the console's connection test (its ENQ) and waits until the console has seen it.
bool grantBid(int fd) {
    if (!readByte(fd, 5))
        return false;
    const char ack = 6;
    if (::write(fd, &ack, 1) != 1)
        return false;
    // The connection test polls once a second; the first status frame must not replace the grant.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    return true;
}

// The PBX side: status frames in one write each, timing the ACKs.
std::vector<double> playPbx(int fd) {
    std::vector<double> rtt;
    if (!grantBid(fd))
        return rtt;
    rtt.reserve(roundTrips);
    for (int i = 0; i < roundTrips; ++i) {
        const double t0 = bench::now();
        if (::write(fd, statusFrame, sizeof statusFrame - 1) <= 0 || !readByte(fd, 6))
            break;
        rtt.push_back((bench::now() - t0) * 1e6);
    }
    return rtt;
}

// The PBX side as a serial line at 9600 baud delivers it: one byte every ten bit times, the time
// running from the frame's last byte to its ACK. The console holds the first eleven bytes as an
// unfinished frame, so this is what the receive assembly costs a whole message.
std::vector<double> tricklePbx(int fd) {
    std::vector<double> rtt;
    if (!grantBid(fd))
        return rtt;
    const auto byteTime = std::chrono::microseconds(1042);
    const size_t last = sizeof statusFrame - 2;
    for (int i = 0; i < trickledFrames; ++i) {
        auto due = std::chrono::steady_clock::now();
        for (size_t b = 0; b < last; ++b) {
            if (::write(fd, &statusFrame[b], 1) != 1)
                return rtt;
            due += byteTime;
            std::this_thread::sleep_until(due);
        }
        const double t0 = bench::now();
        if (::write(fd, &statusFrame[last], 1) != 1 || !readByte(fd, 6))
            break;
        rtt.push_back((bench::now() - t0) * 1e6);
    }
    return rtt;
}

// The physical limit: bids once, then answers every read with ACK. Waiting in poll() first, as
// any event loop must, it is the limit of a program that waits on more than one thing.
template <bool waitInPoll> void rawResponder(int fd) {
    const char enq = 5, ack = 6;
    [[maybe_unused]] ssize_t w = ::write(fd, &enq, 1);
    char buf[256];
    for (;;) {
        if constexpr (waitInPoll) {
            pollfd p{fd, POLLIN, 0};
            ::poll(&p, 1, -1);
        }
        const ssize_t n = ::read(fd, buf, sizeof buf);
        if (n <= 0)
            return;
        // Reads may join the grant of the bid with a frame: one ACK per frame seen. EOT ends it
        // where there is no end of file to see (a pty).
        for (ssize_t i = 0; i < n; ++i) {
            if (buf[i] == 4)
                return;
            if (buf[i] == 2)
                w = ::write(fd, &ack, 1);
        }
    }
}

// Runs the console's event loop until the PBX thread is done.
std::vector<double> withConsole(bench::Console& c,
                                const std::function<std::vector<double>()>& pbx) {
    QEventLoop idle;
    std::vector<double> rtt;
    std::thread peer([&] {
        rtt = pbx();
        QMetaObject::invokeMethod(&idle, &QEventLoop::quit, Qt::QueuedConnection);
    });
    if (c.session.cmd_connect(10) != larkspur::Link::ConnectResult::Connected)
        std::fprintf(stderr, "console did not connect:\n%s\n",
                     qPrintable(c.session.log().logText()));
    // Idles as the window's own event loop does.
    idle.exec();
    peer.join();
    c.session.cmd_disconnect();
    return rtt;
}

std::vector<double> consoleTcp() {
    bench::Console c;
    uint16_t port = 0;
    const int listener = bench::listenLoopback(port);
    c.session.link().settings().useTcp = true;
    c.session.link().settings().ipAddress = QStringLiteral("127.0.0.1");
    c.session.link().settings().telnetPort = QString::number(port);
    auto rtt = withConsole(c, [&] {
        const int fd = ::accept(listener, nullptr, nullptr);
        bench::noDelay(fd);
        auto r = playPbx(fd);
        ::close(fd);
        return r;
    });
    ::close(listener);
    return rtt;
}

template <bool waitInPoll> std::vector<double> rawTcp() {
    uint16_t port = 0;
    const int listener = bench::listenLoopback(port);
    std::thread responder([port] {
        const int fd = bench::connectLoopback(port);
        rawResponder<waitInPoll>(fd);
        ::close(fd);
    });
    const int fd = ::accept(listener, nullptr, nullptr);
    bench::noDelay(fd);
    auto rtt = playPbx(fd);
    ::close(fd);
    responder.join();
    ::close(listener);
    return rtt;
}

std::vector<double> consoleOnPty(std::vector<double> (*pbx)(int)) {
    bench::Console c;
    bench::Pty pty;
    c.session.link().settings().useTcp = false;
    c.session.link().settings().commPortNumber = QString::fromStdString(pty.path);
    c.session.link().settings().speed = QStringLiteral("9600");
    c.session.link().settings().stopBits = QStringLiteral("1");
    return withConsole(c, [&] { return pbx(pty.master); });
}

std::vector<double> consolePty() {
    return consoleOnPty(playPbx);
}

template <bool waitInPoll> std::vector<double> rawPty() {
    bench::Pty pty;
    std::thread responder([&] { rawResponder<waitInPoll>(pty.slave); });
    auto rtt = playPbx(pty.master);
    const char eot = 4;
    [[maybe_unused]] ssize_t w = ::write(pty.master, &eot, 1);
    responder.join();
    return rtt;
}

struct Trial {
    double p50, p99;
};

Trial trial(std::vector<double> (*f)()) {
    const auto rtt = f();
    return {bench::percentile(rtt, 0.5), bench::percentile(rtt, 0.99)};
}

} // namespace

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QCoreApplication app(argc, argv);
    struct Series {
        std::vector<double> p50, p99;
        void add(const Trial& t) {
            p50.push_back(t.p50);
            p99.push_back(t.p99);
        }
    };
    struct Link {
        const char* name;
        std::vector<double> (*console)();
        std::vector<double> (*raw)();
        std::vector<double> (*poll)();
        Series rawSeries = {}, pollSeries = {}, consoleSeries = {};
        std::vector<double> pollRatios = {}, consoleRatios = {};
    } links[] = {{"TCP", consoleTcp, rawTcp<false>, rawTcp<true>},
                 {"pty", consolePty, rawPty<false>, rawPty<true>}};
    // Side by side: in every run each link's answerers follow each other, so a busy moment of
    // the machine weighs on all of them.
    for (int run = 0; run < runs; ++run) {
        for (Link& l : links) {
            const Trial raw = trial(l.raw), polled = trial(l.poll), console = trial(l.console);
            l.rawSeries.add(raw);
            l.pollSeries.add(polled);
            l.consoleSeries.add(console);
            l.pollRatios.push_back(polled.p50 / raw.p50);
            l.consoleRatios.push_back(console.p50 / raw.p50);
        }
    }
    const auto ratioText = [](const std::vector<double>& ratios) {
        const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
        return bench::fmt("x%.2f (runs x%.2f to x%.2f)", bench::median(ratios), *low, *high);
    };
    for (const Link& l : links) {
        const std::string name = std::string("auto-ACK ") + l.name;
        const auto times = [](const Series& s) {
            return bench::fmt("%.1f / %.1f us", bench::median(s.p50), bench::median(s.p99));
        };
        const double p99 = bench::median(l.consoleSeries.p99);
        const double ratio = bench::median(l.consoleRatios);
        bench::row(name + " raw responder p50/p99 (5 x 10k trips)", times(l.rawSeries), "baseline",
                   true);
        bench::row(name + " poll responder p50/p99", times(l.pollSeries), "-", true);
        bench::row(name + " poll responder / raw p50", ratioText(l.pollRatios), "-", true);
        bench::row(name + " console p50/p99", times(l.consoleSeries), "p99 < 300 us", p99 < 300);
        bench::row(name + " console / raw p50", ratioText(l.consoleRatios), "<= 1.15x",
                   ratio <= 1.15);
    }
    const auto trickled = consoleOnPty(tricklePbx);
    const double trickledP99 = bench::percentile(trickled, 0.99);
    bench::row("auto-ACK pty, frame trickled at 9600 baud, p50/p99",
               bench::fmt("%.1f / %.1f us", bench::percentile(trickled, 0.5), trickledP99),
               "< 2 ms from last byte", !trickled.empty() && trickledP99 < 2000);
    return 0;
}
