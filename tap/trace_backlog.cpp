#include "tap/trace_backlog.h"

#include "core/event_pump.h"

#include <cmath>

namespace larkspur::tap {

namespace {
// What an entry weighs against a slice and the capacity beside its bytes: handling it and
// keeping it cost something however few bytes it holds.
constexpr qsizetype entryWeight = 64;
} // namespace

TraceBacklog::TraceBacklog(EventPump& pump, std::function<void(const TraceEntry&)> trace,
                           qsizetype capacity, QObject* parent)
    : QObject(parent), m_pump(pump), m_trace(std::move(trace)), m_capacity(capacity),
      m_anchorTime(pump.currentDateTime()), m_anchorSeconds(pump.monotonicSeconds()) {}

TraceEntry TraceBacklog::stamped(TraceEntry::Kind kind, const QString& text) const {
    // Only the clock is read here, in the relay's turn; the date and time follow from it when
    // the entry is traced.
    TraceEntry entry;
    entry.kind = kind;
    entry.text = text;
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
    m_waitingBytes += entryWeight + entry.bytes.size();
    m_entries.push_back(std::move(entry));
    schedule(quietMs);
}

void TraceBacklog::schedule(int delayMs) {
    if (m_scheduled)
        return;
    m_scheduled = true;
    m_pump.schedule(delayMs, this, [this] { traceSlice(); });
}

void TraceBacklog::traceSlice() {
    m_scheduled = false;
    qsizetype budget = sliceBytes;
    while (budget > 0 && traceNext(&budget)) {
    }
    // Whatever the relay has pending in this turn of the event loop goes first.
    if (!m_entries.empty())
        schedule(0);
}

bool TraceBacklog::traceNext(qsizetype* budget) {
    if (m_entries.empty())
        return false;
    TraceEntry& front = m_entries.front();
    front.time = m_anchorTime.addMSecs(std::llround((front.seconds - m_anchorSeconds) * 1000.0));
    if (front.kind != TraceEntry::Kind::Bytes) {
        const TraceEntry entry = std::move(front);
        m_entries.pop_front();
        m_waitingBytes -= entryWeight;
        *budget -= entryWeight;
        m_trace(entry);
        return true;
    }
    const qsizetype take =
        qBound<qsizetype>(1, *budget - entryWeight, front.bytes.size() - m_frontOffset);
    TraceEntry slice = front;
    slice.bytes = front.bytes.mid(m_frontOffset, take);
    m_frontOffset += take;
    m_waitingBytes -= take;
    *budget -= entryWeight + take;
    if (m_frontOffset == front.bytes.size()) {
        m_entries.pop_front();
        m_frontOffset = 0;
        m_waitingBytes -= entryWeight;
    }
    m_trace(slice);
    return true;
}

void TraceBacklog::drain() {
    for (;;) {
        qsizetype budget = sliceBytes;
        if (!traceNext(&budget))
            return;
    }
}

} // namespace larkspur::tap
