#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace larkspur::tap {

// Writes lines to one descriptor from a thread of its own, so that a slow reader of the trace
// (a terminal scrolled back, a pipe nobody empties, a slow disk) never holds up the relay. At
// most `capacity` bytes wait; a line that does not fit is dropped and counted, and once lines
// fit again a note says how many were lost. A write that fails ends the writing; the relay goes
// on.
class LineSink {
public:
    static constexpr qsizetype defaultCapacity = 4 * 1024 * 1024;

    // `fd` stays open and owned by the caller.
    explicit LineSink(int fd, qsizetype capacity = defaultCapacity);
    ~LineSink();
    LineSink(const LineSink&) = delete;
    LineSink& operator=(const LineSink&) = delete;

    // Queues `line` and its line end.
    void post(const QString& line);
    // Waits up to `timeoutMs` for every queued line to be written, then stops the thread (left
    // behind if a write still blocks). True when everything posted was written.
    bool finish(int timeoutMs);

    qint64 dropped() const;
    // Lines that did not reach the descriptor: dropped, or still waiting when finish() gave up.
    qint64 unwritten() const;
    // Why writing stopped, or empty.
    QString error() const;

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
};

} // namespace larkspur::tap
