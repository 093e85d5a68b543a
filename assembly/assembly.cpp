#include "assembly/assembly.h"

#include "core/event_pump.h"
#include "link/link_trace.h"

namespace larkspur {

Assembly::Assembly(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial,
                   qsizetype traceCapacity)
    : session(pump, op, tcp, serial), trace(pump, traceCapacity) {
    traceLink(session.link, trace);
    // Whatever was still unanswered when the link went down was never answered.
    connect(&session.link, &Link::disconnected, this,
            [this] { trace.finish(QStringLiteral("the link was closed")); });
    connect(&session.link, &Link::linkLost, this, [this](const QString& reason) {
        trace.finish(QStringLiteral("link lost: ") + reason);
    });
    connect(&trace, &WireTrace::exchangeEnded, this, [this](const Exchange& exchange) {
        statistics.add(exchange);
        Q_EMIT statisticsChanged();
    });
    connect(&session, &Session::expectationEnded, this,
            [this](const QString& item, bool succeeded, qint64 ms) {
                statistics.addWait(item, succeeded, ms);
                Q_EMIT statisticsChanged();
            });
}

} // namespace larkspur
