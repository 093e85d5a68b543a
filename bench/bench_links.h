#pragma once

// Loopback sockets and pseudo-terminals for the latency benchmarks: the raw POSIX ends their
// peers talk through.
#include <arpa/inet.h>
#include <chrono>
#include <cstdint>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pty.h>
#include <string>
#include <sys/socket.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace bench {

inline void noDelay(int fd) {
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

inline int listenLoopback(uint16_t& port) {
    const int s = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
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

// Retries for a while: the listening end may be a process that is still starting.
inline int connectLoopback(uint16_t port) {
    for (int attempt = 0; attempt < 500; ++attempt) {
        const int s = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        a.sin_port = htons(port);
        if (::connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0) {
            noDelay(s);
            return s;
        }
        ::close(s);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return -1;
}

// A pseudo-terminal in raw mode at both ends; `path` names the end a serial port opens.
struct Pty {
    int master = -1, slave = -1;
    std::string path;
    Pty() {
        char name[128];
        ::openpty(&master, &slave, name, nullptr, nullptr);
        for (const int fd : {master, slave}) {
            termios t{};
            ::tcgetattr(fd, &t);
            ::cfmakeraw(&t);
            ::tcsetattr(fd, TCSANOW, &t);
        }
        path = name;
    }
    ~Pty() {
        ::close(master);
        ::close(slave);
    }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;
};

} // namespace bench
