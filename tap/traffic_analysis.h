#pragma once

#include "core/pms_mode.h"
#include "protocol/wire_reader.h"
#include "records/exchange_pairing.h"
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

// What the tap makes of what it relayed: each side cut into wire units, each named and paired
// with its answer, a trace line for each and for every session's start and end, the
// statistics of every exchange, and the script learned from the PMS's transactions.
class TrafficAnalysis : public QObject {
    Q_OBJECT
public:
    // How long an answer heard before what it answers waits for it on a passive monitor.
    static constexpr int monitorEarlyAnswerMs = 200;
    // Stray bytes and unfinished frames are shown in pieces of at most this many bytes.
    static constexpr qsizetype pieceBytes = 64;

    struct Setup {
        PmsMode mode = PmsMode::Hotel;
        int frameGapMs = 100;
        // The two sides are heard on ports of their own.
        bool monitor = false;
        // A read of the PBX's that holds several whole messages is not worth a note.
        bool splitJoined = false;
    };

    // `learner` may be null. `traceLine` takes each line without its line end.
    TrafficAnalysis(EventPump& pump, const Setup& setup,
                    std::function<void(const QString&)> traceLine, RunStatistics& statistics,
                    ScriptLearner* learner, QObject* parent = nullptr);
    ~TrafficAnalysis() override;

    void take(const TraceEntry& entry);
    // The tap stops: what is held is shown, and what waits for an answer gets none.
    void finish(const QDateTime& time, double seconds);

Q_SIGNALS:
    // `exchange` was answered, refused, or not answered.
    void exchangeEnded(const larkspur::Exchange& exchange);

private:
    struct Arrival {
        QDateTime time;
        double seconds = 0;
    };
    void takeRead(Side from, const QDateTime& time, const QList<WireUnit>& units);
    void onUnit(Side from, const WireUnit& unit);
    void flush(Side side);
    void onEnded(const Exchange& exchange);
    void endSession(const QString& why, const QDateTime& time, double seconds);
    void note(const QDateTime& time, const QString& text);

    std::function<void(const QString&)> m_traceLine;
    RunStatistics& m_statistics;
    ScriptLearner* m_learner;
    bool m_splitJoined;
    ExchangePairing m_pairing;
    std::unique_ptr<WireReader> m_readers[2];
    // When each side's last bytes came: the time of every unit cut from them.
    Arrival m_arrival[2];
};

} // namespace larkspur::tap
