#include "tap/traffic_analysis.h"

#include "records/run_statistics.h"
#include "tap/script_learner.h"
#include "tap/trace_lines.h"

namespace larkspur::tap {

TrafficAnalysis::TrafficAnalysis(EventPump& pump, PmsMode mode, int frameGapMs, bool monitor,
                                 std::function<void(const QString&)> traceLine,
                                 RunStatistics& statistics, ScriptLearner* learner, QObject* parent)
    : QObject(parent), m_traceLine(std::move(traceLine)), m_statistics(statistics),
      m_learner(learner), m_tracker(pump, mode, monitor ? monitorEarlyAnswerMs : 0) {
    for (const Side side : {Side::Pms, Side::Pbx})
        m_cutters[int(side)] = std::make_unique<MessageCutter>(
            pump, mode == PmsMode::Vmail, frameGapMs,
            [this, side](const MessageCutter::Message& message) { onMessage(side, message); });
    connect(&m_tracker, &ExchangeTracker::ended, this, &TrafficAnalysis::onEnded);
    connect(&m_tracker, &ExchangeTracker::shown, this,
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
        m_cutters[int(entry.side)]->take(entry.bytes);
        break;
    case TraceEntry::Kind::Untraced:
        m_cutters[int(entry.side)]->flush();
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
        m_cutters[int(side)]->flush();
    m_tracker.endSession(why, time, seconds);
}

void TrafficAnalysis::onMessage(Side from, const MessageCutter::Message& message) {
    const Arrival& at = m_arrival[int(from)];
    m_tracker.track(from, message, at.time, at.seconds);
    if (m_learner && from == Side::Pbx && message.kind == MessageCutter::Kind::Frame)
        m_learner->pbxFrame(message.bytes, at.seconds);
}

void TrafficAnalysis::onEnded(const Exchange& exchange, const ExchangeEnd& end) {
    const bool answered = end.outcome != ExchangeEvent::Outcome::TimedOut;
    m_statistics.add(ExchangeEvent{exchange.type, end.outcome, answered ? end.ms : -1});
    if (!end.note.isEmpty())
        note(end.time, end.note);
    if (m_learner && exchange.from == Side::Pms && !exchange.enq &&
        end.outcome == ExchangeEvent::Outcome::Acknowledged)
        m_learner->acknowledged(exchange.bytes, end.seconds);
}

void TrafficAnalysis::note(const QDateTime& time, const QString& text) {
    m_traceLine(noteLine(time, text));
}

} // namespace larkspur::tap
