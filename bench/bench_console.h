#pragma once

// A console engine for benchmarks: the real Qt pump and transports, no window, notices dropped.
#include "core/qt_event_pump.h"
#include "link/real_transports.h"
#include "quiet_operator.h"
#include "transactions/session.h"

namespace bench {

struct Console {
    larkspur::QtEventPump pump;
    QuietOperator op;
    larkspur::RealTcpTransport tcp;
    larkspur::RealSerialTransport serial;
    larkspur::Session session{pump, op, tcp, serial};
};

} // namespace bench
