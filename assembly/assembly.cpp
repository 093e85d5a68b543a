#include "assembly/assembly.h"

#include "core/event_pump.h"
#include "link/link_trace.h"

namespace larkspur {

Assembly::Assembly(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial,
                   qsizetype traceCapacity)
    : session(pump, op, tcp, serial), trace(traceCapacity) {
    traceLink(session.link, trace);
    // Whatever was still unanswered when the link went down was never answered.
    const auto finish = [this] { trace.finish(session.pump.currentDateTime()); };
    connect(&session.link, &Link::disconnected, this, finish);
    connect(&session.link, &Link::linkLost, this, finish);
    connect(&trace, &WireTrace::exchangeEnded, this, [this](const ExchangeEvent& event) {
        statistics.add(event);
        Q_EMIT statisticsChanged();
    });
    connect(&session, &Session::expectationEnded, this,
            [this](const QString& item, bool succeeded, qint64 ms) {
                statistics.addWait(item, succeeded, ms);
                Q_EMIT statisticsChanged();
            });
}

} // namespace larkspur
