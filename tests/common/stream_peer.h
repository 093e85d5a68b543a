#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace larkspur::test {

inline constexpr qsizetype megabyte = 1 << 20;

// Every byte value, in a pattern that shows a lost, doubled or swapped stretch.
inline QByteArray pattern(qsizetype size, int seed) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char((i * 7 + i / 251 + seed) & 0xFF);
    return bytes;
}

// The far end of a socket or a pty, a raw non-blocking descriptor driven by the event loop: it
// keeps what it reads and writes what it is given as the descriptor takes it. It reads at most
// `readLimit` bytes a wake-up, so a small limit plays a peer that reads slowly.
class StreamPeer {
public:
    explicit StreamPeer(int fd, qsizetype readLimit = 65536) : m_fd(fd), m_readLimit(readLimit) {
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
        QObject::connect(&m_readable, &QSocketNotifier::activated, [this] { readSome(); });
        QObject::connect(&m_writable, &QSocketNotifier::activated, [this] { writeSome(); });
        m_writable.setEnabled(false);
    }
    ~StreamPeer() { close(); }
    StreamPeer(const StreamPeer&) = delete;
    StreamPeer& operator=(const StreamPeer&) = delete;

    void send(const QByteArray& bytes) {
        m_unsent += bytes;
        m_writable.setEnabled(true);
    }
    // A peer that stops reading lets the other side's buffers fill.
    void setReading(bool reading) { m_readable.setEnabled(reading && m_fd >= 0); }
    void close() {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }
    int fd() const { return m_fd; }
    bool sentAll() const { return m_unsent.isEmpty(); }

    QByteArray received;
    bool hungUp = false; // the other side closed its end

private:
    void readSome() {
        QByteArray buffer(m_readLimit, Qt::Uninitialized);
        const ssize_t n = ::read(m_fd, buffer.data(), size_t(buffer.size()));
        if (n > 0) {
            received += buffer.first(n);
        } else if (n == 0 || errno != EAGAIN) {
            hungUp = true;
            m_readable.setEnabled(false);
        }
    }
    void writeSome() {
        const ssize_t n = ::write(m_fd, m_unsent.constData(), size_t(m_unsent.size()));
        if (n > 0)
            m_unsent.remove(0, n);
        if (m_unsent.isEmpty())
            m_writable.setEnabled(false);
    }

    int m_fd;
    qsizetype m_readLimit;
    QSocketNotifier m_readable{m_fd, QSocketNotifier::Read};
    QSocketNotifier m_writable{m_fd, QSocketNotifier::Write};
    QByteArray m_unsent;
};

// A loopback TCP server whose connections become peers as they come in.
class LoopbackListener {
public:
    LoopbackListener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        ::bind(m_fd, reinterpret_cast<sockaddr*>(&address), length);
        ::listen(m_fd, 8);
        ::getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        QObject::connect(&m_incoming, &QSocketNotifier::activated, [this] {
            const int accepted = ::accept4(m_fd, nullptr, nullptr, SOCK_CLOEXEC);
            if (accepted >= 0)
                peers.push_back(std::make_unique<StreamPeer>(accepted));
        });
    }
    ~LoopbackListener() { ::close(m_fd); }
    LoopbackListener(const LoopbackListener&) = delete;
    LoopbackListener& operator=(const LoopbackListener&) = delete;

    quint16 port() const { return m_port; }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }
    StreamPeer& last() { return *peers.back(); }

    std::vector<std::unique_ptr<StreamPeer>> peers;

private:
    int m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    quint16 m_port = 0;
    QSocketNotifier m_incoming{m_fd, QSocketNotifier::Read};
};

// A peer connected to a loopback port (a refused connect hangs up at once).
inline std::unique_ptr<StreamPeer> connectToLoopback(quint16 port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    return std::make_unique<StreamPeer>(fd);
}

} // namespace larkspur::test
