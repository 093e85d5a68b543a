#include "tap/trace_backlog.h"

#include "core/event_pump.h"

namespace larkspur::tap {

namespace {
// What an entry without bytes weighs against a slice and the capacity.
constexpr qsizetype entryWeight = 64;
} // namespace

TraceBacklog::TraceBacklog(EventPump& pump, std::function<void(const TraceEntry&)> trace,
                           qsizetype capacity, QObject* parent)
    : QObject(parent), m_pump(pump), m_trace(std::move(trace)), m_capacity(capacity) {}

TraceEntry TraceBacklog::stamped(TraceEntry::Kind kind, const QString& text) const {
    TraceEntry entry;
    entry.kind = kind;
    entry.text = text;
    entry.time = m_pump.currentDateTime();
    entry.seconds = m_pump.monotonicSeconds();
    return entry;
}

void TraceBacklog::passed(Side from, const QByteArray& bytes) {
    if (m_waitingBytes + bytes.size() > m_capacity) {
        // The trace fell behind: these bytes are relayed but not traced, and counted.
        m_untraced[int(from)] += bytes.size();
        if (!m_entries.empty() && m_entries.back().kind == TraceEntry::Kind::Untraced &&
            m_entries.back().side == from) {
            m_entries.back().count += bytes.size();
            return;
        }
        TraceEntry lost = stamped(TraceEntry::Kind::Untraced, QString());
        lost.side = from;
        lost.count = bytes.size();
        add(std::move(lost));
        return;
    }
    TraceEntry entry = stamped(TraceEntry::Kind::Bytes, QString());
    entry.side = from;
    entry.bytes = bytes;
    add(std::move(entry));
}

void TraceBacklog::opened(const QString& text) {
    add(stamped(TraceEntry::Kind::Opened, text));
}

void TraceBacklog::closed(const QString& text) {
    add(stamped(TraceEntry::Kind::Closed, text));
}

void TraceBacklog::note(const QString& text) {
    add(stamped(TraceEntry::Kind::Note, text));
}

void TraceBacklog::add(TraceEntry entry) {
    m_waitingBytes += entry.kind == TraceEntry::Kind::Bytes ? entry.bytes.size() : entryWeight;
    m_entries.push_back(std::move(entry));
    schedule();
}

void TraceBacklog::schedule() {
    if (m_scheduled)
        return;
    m_scheduled = true;
    // Due at once, but after whatever the relay has pending in this turn of the event loop.
    m_pump.schedule(0, this, [this] { traceSlice(); });
}

void TraceBacklog::traceSlice() {
    m_scheduled = false;
    qsizetype used = 0;
    while (used < sliceBytes && traceNext(sliceBytes - used, &used)) {
    }
    if (!m_entries.empty())
        schedule();
}

bool TraceBacklog::traceNext(qsizetype budget, qsizetype* used) {
    if (m_entries.empty())
        return false;
    TraceEntry& front = m_entries.front();
    if (front.kind != TraceEntry::Kind::Bytes) {
        TraceEntry entry = std::move(front);
        m_entries.pop_front();
        m_waitingBytes -= entryWeight;
        *used += entryWeight;
        m_trace(entry);
        return true;
    }
    const qsizetype take = qMin(budget, front.bytes.size() - m_frontOffset);
    TraceEntry slice = front;
    slice.bytes = front.bytes.mid(m_frontOffset, take);
    m_frontOffset += take;
    m_waitingBytes -= take;
    *used += take;
    if (m_frontOffset == front.bytes.size()) {
        m_entries.pop_front();
        m_frontOffset = 0;
    }
    m_trace(slice);
    return true;
}

void TraceBacklog::drain() {
    qsizetype used = 0;
    while (traceNext(sliceBytes, &used)) {
    }
}

} // namespace larkspur::tap
