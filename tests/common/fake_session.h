#pragma once

#include "common/recording_operator.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "transactions/session.h"

namespace larkspur::test {

// A session on fake transports in virtual time, with every notice recorded: the common base of
// the fixtures that drive the engine or the window without a PBX of their own.
struct FakeSession {
    VirtualEventPump pump;
    RecordingOperator op;
    FakeTransport tcp{pump, QStringLiteral("TCP fake")};
    FakeTransport serial{pump, QStringLiteral("serial fake")};
    Session session{pump, op, tcp, serial};
};

} // namespace larkspur::test
