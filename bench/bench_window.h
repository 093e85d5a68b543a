#pragma once

// The console window for benchmarks: offscreen, in virtual time, on fake transports, with its
// settings in a folder of its own and notices dropped.
#include "quiet_operator.h"

#include "assembly/assembly.h"
#include "console/main_window.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"

#include <QSettings>
#include <QTemporaryDir>

namespace bench {

struct Window {
    QTemporaryDir dir;
    QSettings settings{dir.filePath(QStringLiteral("s.ini")), QSettings::IniFormat};
    larkspur::VirtualEventPump pump;
    QuietOperator op;
    larkspur::FakeTransport tcp{pump, QStringLiteral("tcp")};
    larkspur::FakeTransport serial{pump, QStringLiteral("serial")};
    larkspur::Assembly console{pump, op, tcp, serial, 100'000};
    larkspur::Session& session = console.session;
    larkspur::MainWindow window{console, settings};
};

} // namespace bench
