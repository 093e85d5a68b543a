#include "tap/traffic_analysis.h"

#include "records/run_statistics.h"
#include "tap/script_learner.h"
#include "tap/trace_lines.h"

#include <algorithm>

namespace larkspur::tap {

TrafficAnalysis::TrafficAnalysis(EventPump& pump, const Setup& setup,
                                 std::function<void(const QString&)> traceLine,
                                 RunStatistics& statistics, ScriptLearner* learner, QObject* parent)
    : QObject(parent), m_traceLine(std::move(traceLine)), m_statistics(statistics),
      m_learner(learner), m_splitJoined(setup.splitJoined),
      m_pairing(pump, setup.mode, setup.monitor ? monitorEarlyAnswerMs : 0) {
    for (const Side side : {Side::Pms, Side::Pbx}) {
        m_readers[int(side)] =
            std::make_unique<WireReader>(pump, setup.mode == PmsMode::Vmail, setup.frameGapMs);
        connect(m_readers[int(side)].get(), &WireReader::gapPassed, this,
                [this, side](const WireUnit& unfinished) { onUnit(side, unfinished); });
    }
    connect(&m_pairing, &ExchangePairing::ended, this, &TrafficAnalysis::onEnded);
    connect(&m_pairing, &ExchangePairing::shown, this,
            [this](Side from, const QByteArray& bytes, const QDateTime& time,
                   const QString& description) {
                m_traceLine(messageLine(time, from, bytes, description));
            });
}

TrafficAnalysis::~TrafficAnalysis() = default;

void TrafficAnalysis::take(const TraceEntry& entry) {
    switch (entry.kind) {
    case TraceEntry::Kind::Bytes:
        m_arrival[int(entry.side)] = {entry.time, entry.seconds};
        takeRead(entry.side, entry.time, m_readers[int(entry.side)]->feed(entry.bytes));
        break;
    case TraceEntry::Kind::Untraced:
        flush(entry.side);
        note(entry.time, QStringLiteral("%1 bytes %2 relayed but not traced: the trace fell behind")
                             .arg(entry.count)
                             .arg(directionName(entry.side)));
        break;
    case TraceEntry::Kind::Opened:
        note(entry.time, entry.text);
        if (m_learner)
            m_learner->sessionStarted(entry.seconds);
        break;
    case TraceEntry::Kind::Closed:
        endSession(QStringLiteral("the session ended"), entry.time, entry.seconds);
        note(entry.time, entry.text);
        break;
    case TraceEntry::Kind::Note:
        note(entry.time, entry.text);
        break;
    }
}

void TrafficAnalysis::finish(const QDateTime& time, double seconds) {
    endSession(QStringLiteral("the tap stopped"), time, seconds);
}

void TrafficAnalysis::endSession(const QString& why, const QDateTime& time, double seconds) {
    for (const Side side : {Side::Pms, Side::Pbx})
        flush(side);
    m_pairing.endSession(why, time, seconds);
}

void TrafficAnalysis::flush(Side side) {
    if (const std::optional<WireUnit> unfinished = m_readers[int(side)]->flush())
        onUnit(side, *unfinished);
}

void TrafficAnalysis::takeRead(Side from, const QDateTime& time, const QList<WireUnit>& units) {
    const auto whole = std::count_if(units.begin(), units.end(), [](const WireUnit& unit) {
        return unit.isControl() || unit.kind == WireUnit::Kind::Frame;
    });
    // The console takes one read as one message unless told that a converter joins them.
    if (from == Side::Pbx && whole > 1 && !m_splitJoined)
        note(time, QStringLiteral("%1 messages came in one read: a console takes them as one "
                                  "text, unless run with --split-joined")
                       .arg(whole));
    for (const WireUnit& unit : units)
        onUnit(from, unit);
}

void TrafficAnalysis::onUnit(Side from, const WireUnit& unit) {
    const Arrival& at = m_arrival[int(from)];
    const bool whole =
        unit.kind != WireUnit::Kind::Stray && unit.kind != WireUnit::Kind::UnfinishedFrame;
    if (whole || unit.bytes.size() <= pieceBytes) {
        m_pairing.track(from, unit, at.time, at.seconds);
    } else {
        for (qsizetype offset = 0; offset < unit.bytes.size(); offset += pieceBytes)
            m_pairing.track(from, {unit.kind, unit.bytes.mid(offset, pieceBytes)}, at.time,
                            at.seconds);
    }
    if (m_learner && from == Side::Pbx && unit.kind == WireUnit::Kind::Frame)
        m_learner->pbxFrame(unit.bytes, at.seconds);
}

void TrafficAnalysis::onEnded(const Exchange& exchange) {
    m_statistics.add(exchange);
    Q_EMIT exchangeEnded(exchange);
    if (!exchange.note.isEmpty())
        note(exchange.ended, exchange.note);
    if (m_learner && exchange.from == Side::Pms && !exchange.enq &&
        exchange.outcome == Exchange::Outcome::Acknowledged)
        m_learner->acknowledged(exchange.bytes, exchange.endedSeconds);
}

void TrafficAnalysis::note(const QDateTime& time, const QString& text) {
    m_traceLine(noteLine(time, text));
}

} // namespace larkspur::tap
