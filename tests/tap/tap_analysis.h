#pragma once

#include "core/virtual_event_pump.h"
#include "protocol/readable_notation.h"
#include "records/run_statistics.h"
#include "tap/script_learner.h"
#include "tap/trace_backlog.h"
#include "tap/traffic_analysis.h"

#include <memory>

namespace larkspur::tap::test {

// How the analysis under test is set up.
struct TapSetup {
    PmsMode mode = PmsMode::Hotel;
    Protocol protocol = Protocol::Hyatt;
    bool learn = false;
    bool waits = false;
    qsizetype capacity = TraceBacklog::defaultCapacity;
    bool monitor = false;
};

// The tap's analysis in virtual time, fed through its backlog as the relay feeds it: what each
// side sends, in readable notation, at a given millisecond; the trace lines (without the date),
// the statistics and the learned script lines come out.
class TapAnalysis {
public:
    explicit TapAnalysis(const TapSetup& setup = TapSetup{})
        : learner(setup.learn ? std::make_unique<ScriptLearner>(
                                    setup.mode, setup.protocol, setup.waits,
                                    [this](const QString& line, int) { learned << line; })
                              : nullptr),
          analysis(
              pump, {setup.mode, 100, setup.monitor},
              [this](const QString& line) { lines << line.mid(11); }, statistics, learner.get()),
          backlog(
              pump, [this](const TraceEntry& entry) { analysis.take(entry); }, setup.capacity) {}

    void send(qint64 atMs, Side from, const QString& readable) {
        const QByteArray bytes = parseReadable(readable, nullptr);
        pump.schedule(atMs - pump.elapsedMs(),
                      [this, from, bytes] { backlog.passed(from, bytes); });
    }
    void open(qint64 atMs, const QString& text) {
        pump.schedule(atMs - pump.elapsedMs(), [this, text] { backlog.opened(text); });
    }
    void close(qint64 atMs, const QString& text) {
        pump.schedule(atMs - pump.elapsedMs(), [this, text] { backlog.closed(text); });
    }
    // Runs every delivery and time-out to the end.
    void run() {
        while (pump.hasPendingDeliveries()) {
            pump.waitForEvent(60'000);
            pump.processEvents();
        }
    }
    // "sent/acked/refused/timeout min/median/max" of one statistics row.
    QString row(const QString& type) const {
        const RunStatistics::Row r = statistics.rows().value(type);
        return QStringLiteral("%1/%2/%3/%4 %5/%6/%7")
            .arg(r.sent)
            .arg(r.acknowledged)
            .arg(r.refused)
            .arg(r.timedOut)
            .arg(r.minMs())
            .arg(r.medianMs())
            .arg(r.maxMs());
    }

    VirtualEventPump pump;
    QStringList lines;
    RunStatistics statistics;
    QStringList learned;
    std::unique_ptr<ScriptLearner> learner;
    TrafficAnalysis analysis;
    TraceBacklog backlog;
};

} // namespace larkspur::tap::test
