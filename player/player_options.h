#pragma once

#include "core/pms_mode.h"
#include "sim/sim_options.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace larkspur {

// The command line of the headless player. Unset options keep the stored settings, or the
// defaults with --no-settings.
struct PlayerOptions {
    std::optional<QString> tcpHost;
    std::optional<QString> tcpPort;
    std::optional<QString> serialPort;
    QString line; // SPEED,PARITY,DATA,STOP; empty: none given
    bool dtr = false;
    bool rts = false;
    bool nullDiscard = false;
    std::optional<PmsMode> mode;
    std::optional<Protocol> protocol;
    bool errorMode = false;
    bool continuous = false;
    double connectTimeoutSeconds = 30;
    int frameGapMs = 0; // --frame-gap; 0: none given
    bool splitJoined = false;
    // --no-settings: the window's stored settings are not read, so a run depends on its
    // command line alone.
    bool noSettings = false;
    QString saveLog;
    QString errorReport;
    QString junit;
    QString trace;
    QString report;
    // --progress, --no-progress; unset: shown when standard error is a terminal.
    std::optional<bool> progress;
    QString script;
    bool help = false;
    // --check: read the script as the runner does and report, open nothing; --json: as JSON.
    bool check = false;
    bool json = false;
    // --dry-run: play against the simulator inside the process, in virtual time, answering as
    // the simulator options after the script tell it.
    bool dryRun = false;
    sim::SimOptions pbx;
    bool pbxModeGiven = false;
};

// Parses the arguments after the program name. On an error returns nothing and says why.
std::optional<PlayerOptions> parsePlayerOptions(const QStringList& arguments, QString& error);

QString playerUsage();
// The synopsis and what the script options do, for --help.
QString playerHelp();

} // namespace larkspur
