#include "assembly/assembly.h"

#include "assembly/link_name.h"
#include "core/event_pump.h"
#include "link/link_trace.h"

namespace larkspur {

Assembly::Assembly(EventPump& pump, OperatorInterface& op, Transport& tcp, Transport& serial,
                   qsizetype traceCapacity)
    : session(pump, op, tcp, serial), trace(pump, traceCapacity) {
    traceLink(session.link(), trace);
    // The trace marks each time the link came up, was closed or was lost: a saved trace that
    // jumps an hour says why. Whatever was still unanswered when the link went down was never
    // answered.
    const auto mark = [this](const QString& what) {
        trace.note(linkName(session.link().settings()) + what);
    };
    connect(&session.link(), &Link::connected, this,
            [mark] { mark(QStringLiteral(" connected")); });
    connect(&session.link(), &Link::disconnected, this, [this, mark] {
        trace.finish(QStringLiteral("the link was closed"));
        mark(QStringLiteral(" closed by the console"));
    });
    connect(&session.link(), &Link::linkLost, this, [this, mark](const QString& reason) {
        trace.finish(QStringLiteral("link lost: ") + reason);
        mark(QStringLiteral(" lost: ") + reason);
    });
    connect(&trace, &WireTrace::exchangeEnded, this, [this](const Exchange& exchange) {
        statistics.add(exchange);
        Q_EMIT statisticsChanged();
    });
    connect(&session.events(), &SessionEvents::expectationEnded, this,
            [this](const QString& item, bool succeeded, qint64 ms) {
                statistics.addWait(item, succeeded, ms);
                Q_EMIT statisticsChanged();
            });
}

} // namespace larkspur
