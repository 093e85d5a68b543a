#pragma once

#include "core/pms_mode.h"
#include "tap/exchange_tracker.h"
#include "tap/message_cutter.h"
#include "tap/trace_backlog.h"

#include <QObject>

#include <functional>
#include <memory>

namespace larkspur {
class EventPump;
class RunStatistics;
} // namespace larkspur

namespace larkspur::tap {

class ScriptLearner;

// What the tap makes of what it relayed: each side cut into messages, each message named and
// paired with its answer, a trace line for each and for every session's start and end, the
// statistics of every exchange, and the script learned from the PMS's transactions.
class TrafficAnalysis : public QObject {
    Q_OBJECT
public:
    // How long an answer heard before what it answers waits for it on a passive monitor.
    static constexpr int monitorEarlyAnswerMs = 200;

    // `learner` may be null. `traceLine` takes each line without its line end. `monitor`: the
    // two sides are heard on ports of their own.
    TrafficAnalysis(EventPump& pump, PmsMode mode, int frameGapMs, bool monitor,
                    std::function<void(const QString&)> traceLine, RunStatistics& statistics,
                    ScriptLearner* learner, QObject* parent = nullptr);
    ~TrafficAnalysis() override;

    void take(const TraceEntry& entry);
    // The tap stops: what is held is shown, and what waits for an answer gets none.
    void finish(const QDateTime& time, double seconds);

private:
    struct Arrival {
        QDateTime time;
        double seconds = 0;
    };
    void onMessage(Side from, const MessageCutter::Message& message);
    void onEnded(const Exchange& exchange, const ExchangeEnd& end);
    void endSession(const QString& why, const QDateTime& time, double seconds);
    void note(const QDateTime& time, const QString& text);

    std::function<void(const QString&)> m_traceLine;
    RunStatistics& m_statistics;
    ScriptLearner* m_learner;
    ExchangeTracker m_tracker;
    std::unique_ptr<MessageCutter> m_cutters[2];
    // When each side's last bytes came: the time of every message cut from them.
    Arrival m_arrival[2];
};

} // namespace larkspur::tap
