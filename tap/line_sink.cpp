#include "tap/line_sink.h"

#include "tap/trace_lines.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace larkspur::tap {

// Kept alive by the thread too, so a thread left blocked in a write never outlives it.
struct LineSink::Shared {
    int fd;
    qsizetype capacity;
    std::mutex mutex;
    std::condition_variable changed;
    QByteArray queued;
    bool writing = false;  // the thread holds a batch taken from `queued`
    qint64 batchLines = 0; // in the batch being written
    bool stopping = false; // no more lines: write what is queued and end
    qint64 dropped = 0;
    qint64 droppedUnsaid = 0; // dropped since the last note about it
    QString error;

    void run();
    bool writeAll(const QByteArray& bytes);
};

bool LineSink::Shared::writeAll(const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            const std::lock_guard lock(mutex);
            error = QString::fromLocal8Bit(std::strerror(n < 0 ? errno : EIO));
            return false;
        }
        done += n;
    }
    return true;
}

void LineSink::Shared::run() {
    for (;;) {
        QByteArray batch;
        {
            std::unique_lock lock(mutex);
            writing = false;
            changed.notify_all();
            changed.wait(lock, [this] { return !queued.isEmpty() || stopping; });
            if (queued.isEmpty())
                return;
            batch.swap(queued);
            batchLines = batch.count('\n');
            writing = true;
        }
        if (!writeAll(batch)) {
            const std::lock_guard lock(mutex);
            writing = false;
            queued.clear();
            changed.notify_all();
            return;
        }
    }
}

LineSink::LineSink(int fd, qsizetype capacity) : m_shared(std::make_shared<Shared>()) {
    m_shared->fd = fd;
    m_shared->capacity = capacity;
    std::thread([shared = m_shared] { shared->run(); }).detach();
}

LineSink::~LineSink() {
    finish(0);
}

void LineSink::post(const QString& line) {
    QByteArray bytes = line.toUtf8() + '\n';
    Shared& s = *m_shared;
    const std::lock_guard lock(s.mutex);
    if (s.stopping || !s.error.isEmpty())
        return;
    if (s.queued.size() + bytes.size() > s.capacity) {
        ++s.dropped;
        ++s.droppedUnsaid;
        return;
    }
    if (s.droppedUnsaid > 0) {
        s.queued += (noteLine(QDateTime::currentDateTime(),
                              QStringLiteral("%1 trace lines were dropped here: their reader fell "
                                             "behind")
                                  .arg(s.droppedUnsaid)) +
                     u'\n')
                        .toUtf8();
        s.droppedUnsaid = 0;
    }
    s.queued += bytes;
    s.changed.notify_all();
}

bool LineSink::finish(int timeoutMs) {
    Shared& s = *m_shared;
    std::unique_lock lock(s.mutex);
    s.stopping = true;
    s.changed.notify_all();
    const bool written = s.changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                            [&s] { return s.queued.isEmpty() && !s.writing; });
    return written && s.error.isEmpty() && s.dropped == 0;
}

qint64 LineSink::unwritten() const {
    const Shared& s = *m_shared;
    const std::lock_guard lock(m_shared->mutex);
    return s.dropped + s.queued.count('\n') + (s.writing ? s.batchLines : 0);
}

qint64 LineSink::dropped() const {
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->dropped;
}

QString LineSink::error() const {
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->error;
}

} // namespace larkspur::tap
