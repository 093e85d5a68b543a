#include "tap_cable.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace larkspur::test {

namespace {
void makeRaw(int fd) {
    termios raw{};
    ::tcgetattr(fd, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(fd, TCSANOW, &raw);
}

void writeAll(int fd, const char* data, qsizetype size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        data += n;
        size -= n;
    }
}
} // namespace

TapCable::TapCable() {
    ::pipe2(m_wake, O_CLOEXEC | O_NONBLOCK);
}

TapCable::~TapCable() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    [[maybe_unused]] const ssize_t n = ::write(m_wake[1], "x", 1);
    if (m_thread.joinable())
        m_thread.join();
    for (End& end : m_ends)
        closeEnd(end);
    ::close(m_wake[0]);
    ::close(m_wake[1]);
}

int TapCable::addPty() {
    End end;
    char name[256];
    ::openpty(&end.fd, &end.heldSlave, name, nullptr, nullptr);
    ::fcntl(end.fd, F_SETFD, FD_CLOEXEC);
    ::fcntl(end.heldSlave, F_SETFD, FD_CLOEXEC);
    makeRaw(end.fd);
    end.path = QString::fromLocal8Bit(name);
    m_ends.push_back(end);
    return int(m_ends.size()) - 1;
}

int TapCable::addDevice(const QString& path) {
    End end;
    end.fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    makeRaw(end.fd);
    end.path = path;
    m_ends.push_back(end);
    return int(m_ends.size()) - 1;
}

QString TapCable::path(int end) const {
    return m_ends.at(size_t(end)).path;
}

void TapCable::route(int from, int to) {
    m_routes.emplace(from, to);
}

void TapCable::start() {
    m_thread = std::thread([this] { run(); });
}

void TapCable::send(int end, const QByteArray& bytes) {
    const std::lock_guard lock(m_mutex);
    writeAll(m_ends.at(size_t(end)).fd, bytes.constData(), bytes.size());
}

void TapCable::hangUp(int end) {
    std::unique_lock lock(m_mutex);
    m_hangUps.push_back(end);
    [[maybe_unused]] const ssize_t n = ::write(m_wake[1], "x", 1);
    m_changed.wait(lock, [this] { return m_hangUps.empty(); });
}

QByteArray TapCable::heard(int end) const {
    const std::lock_guard lock(m_mutex);
    return m_ends.at(size_t(end)).heard;
}

void TapCable::closeEnd(End& end) {
    if (end.fd >= 0)
        ::close(end.fd);
    if (end.heldSlave >= 0)
        ::close(end.heldSlave);
    end.fd = end.heldSlave = -1;
}

void TapCable::run() {
    for (;;) {
        std::vector<pollfd> watched{{m_wake[0], POLLIN, 0}};
        std::vector<int> ends;
        {
            std::unique_lock lock(m_mutex);
            if (m_stopping)
                return;
            for (const int end : m_hangUps)
                closeEnd(m_ends.at(size_t(end)));
            if (!m_hangUps.empty()) {
                m_hangUps.clear();
                m_changed.notify_all();
            }
            for (size_t i = 0; i < m_ends.size(); ++i) {
                if (m_ends[i].fd >= 0) {
                    watched.push_back({m_ends[i].fd, POLLIN, 0});
                    ends.push_back(int(i));
                }
            }
        }
        if (::poll(watched.data(), watched.size(), -1) < 0)
            continue;
        char drained[64];
        while (::read(m_wake[0], drained, sizeof drained) > 0) {
        }
        const std::lock_guard lock(m_mutex);
        for (size_t k = 1; k < watched.size(); ++k) {
            if (watched[k].revents == 0)
                continue;
            End& from = m_ends[size_t(ends[k - 1])];
            char buffer[4096];
            const ssize_t n = ::read(from.fd, buffer, sizeof buffer);
            if (n <= 0) {
                // The program on the far side went away for good.
                closeEnd(from);
                continue;
            }
            from.heard.append(buffer, n);
            const auto [first, last] = m_routes.equal_range(ends[k - 1]);
            for (auto it = first; it != last; ++it)
                if (m_ends[size_t(it->second)].fd >= 0)
                    writeAll(m_ends[size_t(it->second)].fd, buffer, n);
        }
    }
}

} // namespace larkspur::test
