#pragma once

// A console engine for benchmarks: the real Qt pump and transports, no window, notices dropped.
#include "core/qt_event_pump.h"
#include "link/serial_transport.h"
#include "link/tcp_transport.h"
#include "quiet_operator.h"
#include "transactions/session.h"

namespace bench {

struct Console {
    larkspur::QtEventPump pump;
    QuietOperator op;
    larkspur::TcpTransport tcp;
    larkspur::SerialTransport serial;
    larkspur::Session session{pump, op, tcp, serial};
};

} // namespace bench
