#pragma once

#include "tap/side.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>

#include <deque>
#include <functional>

namespace larkspur {
class EventPump;
}

namespace larkspur::tap {

// Something the links reported, stamped when it happened.
struct TraceEntry {
    enum class Kind { Bytes, Untraced, Opened, Closed, Note };
    Kind kind = Kind::Note;
    Side side = Side::Pms; // Bytes, Untraced: who sent them
    QByteArray bytes;      // Bytes
    qint64 count = 0;      // Untraced: how many bytes
    QString text;          // Opened, Closed, Note
    QDateTime time;
    double seconds = 0; // on the pump's clock
};

// What the links passed on, and their sessions' beginnings and ends, waiting to be traced in
// the order they happened. The relay hands them over and goes on at once; they are traced a
// slice at a time from the event loop, so even a flood costs the relay no more than one slice
// between two of its reads. Past `capacity` bytes waiting, what arrives is not kept but counted
// as untraced, and the trace says so where it happened.
class TraceBacklog : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype defaultCapacity = 1024 * 1024;
    static constexpr qsizetype sliceBytes = 512;

    TraceBacklog(EventPump& pump, std::function<void(const TraceEntry&)> trace,
                 qsizetype capacity = defaultCapacity, QObject* parent = nullptr);

    void passed(Side from, const QByteArray& bytes);
    void opened(const QString& text);
    void closed(const QString& text);
    void note(const QString& text);

    // Traces everything waiting, now.
    void drain();
    qint64 untraced(Side side) const { return m_untraced[int(side)]; }

private:
    void add(TraceEntry entry);
    TraceEntry stamped(TraceEntry::Kind kind, const QString& text) const;
    void schedule();
    void traceSlice();
    // Hands over the first entry, or the next slice of it; false when none waits.
    bool traceNext(qsizetype budget, qsizetype* used);

    EventPump& m_pump;
    std::function<void(const TraceEntry&)> m_trace;
    qsizetype m_capacity;
    std::deque<TraceEntry> m_entries;
    qsizetype m_frontOffset = 0; // how much of the first entry's bytes is traced already
    qsizetype m_waitingBytes = 0;
    bool m_scheduled = false;
    qint64 m_untraced[2] = {0, 0};
};

} // namespace larkspur::tap
