#pragma once

#include "core/host_port.h"
#include "core/pms_mode.h"
#include "link/serial_line.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace larkspur::tap {

// The command line of larkspur-tap.
struct TapOptions {
    // Where the traffic comes from: a TCP relay (listen for the PMS, connect to the PBX), a
    // serial relay (a port towards each), or a passive monitor (receive-only ports, one hearing
    // each side).
    enum class Links { Tcp, Serial, Monitor };
    Links links = Links::Tcp;
    HostPort listen;
    HostPort pbx;
    double connectTimeoutSeconds = 10;
    // The serial relay's ports, or the monitor's (either of those may be empty).
    QString pmsPort;
    QString pbxPort;
    QString line = QStringLiteral("9600,N,8,1");
    PmsMode mode = PmsMode::Hotel;
    Protocol protocol = Protocol::Hyatt;
    int frameGapMs = 0; // 0: none given
    bool splitJoined = false;
    QString trace;
    QString report;
    QString learn;
    bool learnWaits = false;
    bool once = false;
    bool help = false;
};

// Reads the arguments after the program name; nothing and the reason in `error` when they are
// wrong.
std::optional<TapOptions> parseTapOptions(const QStringList& arguments, QString& error);

QString tapUsage();
// The usage and what each option does, for --help.
QString tapHelp();

} // namespace larkspur::tap
