#pragma once

#include "records/side.h"

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
    double seconds = 0;    // when it happened, on the pump's clock
    QDateTime time;        // the same as a date and time, once handed over
};

// What the links passed on, and their sessions' beginnings and ends, waiting to be traced in
// the order they happened. The relay hands them over and goes on at once; they are traced a
// slice at a time from the event loop, so even a flood costs the relay no more than one slice
// between two of its reads. Tracing starts a moment after the first of them came (quietMs),
// which is long enough for the answer to what was just relayed to cross too before any work of
// the trace's is in its way; the time stamps are taken on arrival, so the wait shows nowhere.
// Past `capacity` bytes waiting, what arrives is not kept but counted as untraced, and the trace
// says so where it happened.
class TraceBacklog : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype defaultCapacity = 1024 * 1024;
    static constexpr qsizetype sliceBytes = 512;
    static constexpr int quietMs = 2;

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
    // Traces the next slice `delayMs` from now, unless a slice is due already.
    void schedule(int delayMs);
    void traceSlice();
    // Hands over the first entry, or the next slice of it, and takes what that cost from
    // `budget`; false when none waits.
    bool traceNext(qsizetype* budget);

    EventPump& m_pump;
    std::function<void(const TraceEntry&)> m_trace;
    qsizetype m_capacity;
    QDateTime m_anchorTime; // the pump's date and time at m_anchorSeconds
    double m_anchorSeconds;
    std::deque<TraceEntry> m_entries;
    qsizetype m_frontOffset = 0; // how much of the first entry's bytes is traced already
    qsizetype m_waitingBytes = 0;
    bool m_scheduled = false;
    qint64 m_untraced[2] = {0, 0};
};

} // namespace larkspur::tap
