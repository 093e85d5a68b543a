#include "link/fd_transport.h"

#include <QSocketNotifier>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace larkspur {

namespace {
// One message from the PBX is a few dozen bytes; a larger burst takes more than one read.
constexpr qsizetype readChunk = 4096;
// A peer that sends without pause is read a bounded amount per wake-up, so the event loop still
// turns; the notifier wakes again for the rest.
constexpr int readsPerWakeUp = 16;

bool tryAgain(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}
} // namespace

FdTransport::FdTransport(QObject* parent) : Transport(parent) {}

FdTransport::~FdTransport() {
    FdTransport::close();
}

void FdTransport::attach(int fd, Kind kind) {
    close();
    m_fd = fd;
    m_kind = kind;
    m_watch.watch(
        fd, this, [this] { readPending(); }, [this] { writePending(); });
}

void FdTransport::close() {
    m_watch.stop();
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_received.clear();
    m_unsent.clear();
    m_unsentFrom = 0;
}

QByteArray FdTransport::readAll() {
    return std::exchange(m_received, QByteArray());
}

void FdTransport::readPending() {
    int lostWith = -1;
    for (int reads = 0; reads < readsPerWakeUp; ++reads) {
        char buffer[readChunk];
        const ssize_t n = ::read(m_fd, buffer, sizeof buffer);
        if (n > 0)
            m_received.append(buffer, n);
        else if (n == 0)
            lostWith = 0;
        else if (!tryAgain(errno))
            lostWith = errno;
        // A short read took everything there was; a full one may have left more behind.
        if (n < readChunk)
            break;
    }
    if (!m_received.isEmpty())
        Q_EMIT dataReceived();
    // The receiver may have closed the link meanwhile.
    if (lostWith >= 0 && m_fd >= 0)
        lose(lostWith);
}

qsizetype FdTransport::writeSome(const char* data, qsizetype size) {
    for (;;) {
        // A socket whose peer is gone must not raise SIGPIPE.
        const ssize_t n = m_kind == Kind::Socket ? ::send(m_fd, data, size_t(size), MSG_NOSIGNAL)
                                                 : ::write(m_fd, data, size_t(size));
        if (n >= 0)
            return n;
        if (errno == EINTR)
            continue;
        return tryAgain(errno) ? 0 : -1;
    }
}

void FdTransport::write(const QByteArray& bytes) {
    if (m_fd < 0 || bytes.isEmpty())
        return;
    if (!m_unsent.isEmpty()) {
        m_unsent += bytes; // behind what already waits, to keep the order
        return;
    }
    const qsizetype n = writeSome(bytes.constData(), bytes.size());
    // A failed write is reported by the read side: a descriptor whose peer went away is
    // readable at once, with the end of the file or the error.
    if (n < 0 || n == bytes.size())
        return;
    m_unsent = bytes.mid(n);
    m_watch.setWriting(true);
}

void FdTransport::writePending() {
    const qsizetype n =
        writeSome(m_unsent.constData() + m_unsentFrom, m_unsent.size() - m_unsentFrom);
    m_unsentFrom = n < 0 ? m_unsent.size() : m_unsentFrom + n;
    if (m_unsentFrom == m_unsent.size()) {
        m_unsent.clear();
        m_unsentFrom = 0;
        m_watch.setWriting(false);
        Q_EMIT drained();
    }
}

void FdTransport::pauseReading(bool paused) {
    if (m_watch.watching())
        m_watch.setReading(!paused);
}

void FdTransport::lose(int error) {
    const QString reason = lossReason(error);
    close();
    Q_EMIT linkLost(reason);
}

} // namespace larkspur
