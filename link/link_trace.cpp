#include "link/link_trace.h"

#include "link/link.h"
#include "records/wire_trace.h"

namespace larkspur {

void traceLink(Link& link, WireTrace& trace) {
    QObject::connect(&link, &Link::bytesSent, &trace, [&link, &trace](const QByteArray& bytes) {
        trace.sent(bytes, link.pmsMode());
    });
    QObject::connect(&link, &Link::bytesReceived, &trace, [&link, &trace](const QByteArray& bytes) {
        trace.received(bytes, link.pmsMode());
    });
}

} // namespace larkspur
