// Auto-answer latency: a peer sends a status frame and times the console's ACK, over loopback TCP
// and over a pty, beside a minimal blocking responder that marks the physical limit. Five runs,
// each with both links and both answerers; the table gives medians over the runs.
#include "bench_common.h"
#include "bench_console.h"
#include "core/qt_event_pump.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

const char statusFrame[] = "\x02STS1   101\x03";
constexpr int roundTrips = 10'000;
constexpr int runs = 5;

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

// The PBX side: grants the connection test's ENQ, then sends status frames and times the ACKs.
std::vector<double> playPbx(int fd) {
    std::vector<double> rtt;
    if (!readByte(fd, 5))
        return rtt;
    const char ack = 6;
    [[maybe_unused]] ssize_t w = ::write(fd, &ack, 1);
    // The console's connection test polls once a second; let it see the grant before the first
    // status frame replaces it.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    rtt.reserve(roundTrips);
    for (int i = 0; i < roundTrips; ++i) {
        const double t0 = bench::now();
        w = ::write(fd, statusFrame, sizeof statusFrame - 1);
        if (!readByte(fd, 6))
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

int listenLoopback(quint16& port) {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
    ::listen(s, 1);
    socklen_t len = sizeof a;
    ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &len);
    port = ntohs(a.sin_port);
    return s;
}

void noDelay(int fd) {
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

int connectLoopback(quint16 port) {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(port);
    ::connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
    noDelay(s);
    return s;
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
        std::fprintf(stderr, "console did not connect:\n%s\n", qPrintable(c.session.log.logText()));
    // Idles as the window's own event loop does.
    idle.exec();
    peer.join();
    c.session.cmd_disconnect();
    return rtt;
}

std::vector<double> consoleTcp() {
    bench::Console c;
    quint16 port = 0;
    const int listener = listenLoopback(port);
    c.session.link.settings.useTcp = true;
    c.session.link.settings.ipAddress = QStringLiteral("127.0.0.1");
    c.session.link.settings.telnetPort = QString::number(port);
    auto rtt = withConsole(c, [&] {
        const int fd = ::accept(listener, nullptr, nullptr);
        noDelay(fd);
        auto r = playPbx(fd);
        ::close(fd);
        return r;
    });
    ::close(listener);
    return rtt;
}

template <bool waitInPoll> std::vector<double> rawTcp() {
    quint16 port = 0;
    const int listener = listenLoopback(port);
    std::thread responder([port] {
        const int fd = connectLoopback(port);
        rawResponder<waitInPoll>(fd);
        ::close(fd);
    });
    const int fd = ::accept(listener, nullptr, nullptr);
    noDelay(fd);
    auto rtt = playPbx(fd);
    ::close(fd);
    responder.join();
    ::close(listener);
    return rtt;
}

struct Pty {
    int master = -1, slave = -1;
    QString path;
    Pty() {
        char name[128];
        ::openpty(&master, &slave, name, nullptr, nullptr);
        termios t{};
        ::tcgetattr(slave, &t);
        ::cfmakeraw(&t);
        ::tcsetattr(slave, TCSANOW, &t);
        ::tcgetattr(master, &t);
        ::cfmakeraw(&t);
        ::tcsetattr(master, TCSANOW, &t);
        path = QString::fromLocal8Bit(name);
    }
    ~Pty() {
        ::close(master);
        ::close(slave);
    }
};

std::vector<double> consolePty() {
    bench::Console c;
    Pty pty;
    c.session.link.settings.useTcp = false;
    c.session.link.settings.commPortNumber = pty.path;
    c.session.link.settings.speed = QStringLiteral("9600");
    c.session.link.settings.stopBits = QStringLiteral("1");
    return withConsole(c, [&] { return playPbx(pty.master); });
}

template <bool waitInPoll> std::vector<double> rawPty() {
    Pty pty;
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
    return 0;
}
