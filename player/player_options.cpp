#include "player/player_options.h"

#include "core/host_port.h"
#include "core/option_table.h"
#include "link/serial_line.h"

#include <QStringList>

namespace larkspur {

namespace {
// Options of the simulator that have no place inside larkspur-run.
const QStringList outsideDryRun = {"--listen", "--pty", "--trace", "--help"};

// The simulator options of a dry run; empty with `error` set when they are wrong.
std::optional<sim::SimOptions> parseDryRunPbx(const QStringList& arguments, bool& modeGiven,
                                              QString& error) {
    const sim::ParsedArguments parsed = sim::parseSimArguments(arguments);
    if (!parsed.options) {
        error = QStringLiteral("simulator options: ") + parsed.error;
        return std::nullopt;
    }
    for (const QString& option : parsed.named) {
        if (outsideDryRun.contains(option)) {
            error = QStringLiteral("%1 has no place in a dry run: its simulator runs inside "
                                   "larkspur-run")
                        .arg(option);
            return std::nullopt;
        }
    }
    modeGiven = parsed.named.contains(QStringLiteral("--mode"));
    return parsed.options;
}

// The options, writing into `o`.
OptionTable playerTable(PlayerOptions& o) {
    return OptionTable(
        QStringLiteral("larkspur-run"),
        {
            {"--tcp",
             {"HOST:PORT"},
             "the PBX's address (default: the window's setting)",
             [&o](const QStringList& v) {
                 QString why;
                 const auto endpoint = parseHostPort(v.at(0), false, &why);
                 if (endpoint) {
                     o.tcpHost = endpoint->host;
                     o.tcpPort = QString::number(endpoint->port);
                 }
                 return why;
             }},
            {"--serial",
             {"PORT"},
             "the serial port instead (a number N is the Nth port)",
             [&o](const QStringList& v) {
                 o.serialPort = v.at(0);
                 return v.at(0).trimmed().isEmpty()
                            ? QStringLiteral("wants a port number or device")
                            : QString();
             }},
            lineOption(o.line, "the serial line, such as 9600,N,8,1"),
            flagOption("--dtr", o.dtr, "raise DTR on the serial line"),
            flagOption("--rts", o.rts, "raise RTS on the serial line"),
            flagOption("--null-discard", o.nullDiscard,
                       "drop the NUL bytes the serial line receives"),
            valueOption(
                "--mode", "HOTEL|VMAIL", takeMode(o.mode),
                "the mode the link is tested in (default: the one the script's first line names)"),
            valueOption("--protocol", "HYATT|HIS", takeProtocol(o.protocol),
                        "the voice-mail protocol (default: the script's)"),
            flagOption("--error-mode", o.errorMode,
                       "send the fields as the script has them, unchecked"),
            flagOption("--continuous", o.continuous,
                       "play the script again from its top each time it ends"),
            valueOption("--connect-timeout", "SECONDS",
                        takeSeconds(o.connectTimeoutSeconds, 0, 1e6),
                        "how long the link may take to open (default 30)"),
            frameGapOption(o.frameGapMs),
            flagOption("--split-joined", o.splitJoined,
                       "take each whole message of a read on its own, for a serial-to-TCP\n"
                       "converter that joins them (the window's setting Link/SplitJoinedMessages)"),
            flagOption("--no-settings", o.noSettings,
                       "ignore the settings the window stored: what the options leave open is the\n"
                       "first-run default (TCP 127.0.0.1:15374, line 1200,N,8,2), so the same\n"
                       "command runs the same on every machine, as in CI"),
            valueOption("--save-log", "FILE", takeText(o.saveLog),
                        "write the log viewer's lines to FILE"),
            valueOption("--error-report", "FILE", takeText(o.errorReport),
                        "write the error records to FILE"),
            valueOption("--junit", "FILE", takeText(o.junit),
                        "write a JUnit report to FILE, one test case per command"),
            valueOption("--trace", "FILE", takeText(o.trace),
                        "write every byte sent and received to FILE, time-stamped"),
            valueOption("--report", "FILE", takeText(o.report),
                        "write FILE.html at the end, a page of the run for a browser: its\n"
                        "failures first, then every exchange drawn between the PMS and the PBX"),
            {"--progress",
             {},
             "show the progress line on standard error even when it is not a terminal",
             [&o](const QStringList&) {
                 o.progress = true;
                 return QString();
             }},
            {"--no-progress",
             {},
             "never show the progress line (by default it shows on a terminal)",
             [&o](const QStringList&) {
                 o.progress = false;
                 return QString();
             }},
            flagOption(
                "--check", o.check,
                "read SCRIPT as the runner does and print, without opening any link, each\n"
                "command it will reach with its fields and columns, then what will not play\n"
                "as written; exit 0 clean, 1 with warnings, 3 when the run would stop"),
            flagOption("--json", o.json, "with --check: the same as one JSON object"),
            flagOption("--dry-run", o.dryRun,
                       "play SCRIPT against the simulator inside this process, in virtual time:\n"
                       "the same run and output as against larkspur-pbxsim, in a fraction of a\n"
                       "second, with no socket or device opened; the simulator's options follow\n"
                       "SCRIPT and set how it answers, as larkspur-pbxsim(1) describes"),
        },
        QStringLiteral("SCRIPT [SIMULATOR OPTIONS]"));
}

// Options that --check, which opens nothing, takes.
const QStringList checkOptions = {"--check", "--json", "--error-mode", "--help"};

} // namespace

QString playerUsage() {
    PlayerOptions o;
    return playerTable(o).usage();
}

QString playerHelp() {
    PlayerOptions o;
    return playerTable(o).help(
        QStringLiteral(
            "Plays SCRIPT against the PBX as the window's Run Script does: the traffic\n"
            "log on standard output, notices and the run statistics on standard error.\n"),
        QStringLiteral("Exit status: 0 clean, 1 a command failed, 2 no link, 3 bad script, 4 link "
                       "lost,\n5 a report or the traffic log could not be written whole, 64 bad "
                       "arguments, 129 hung up,\n130 interrupted.\n"));
}

std::optional<PlayerOptions> parsePlayerOptions(const QStringList& arguments, QString& error) {
    PlayerOptions o;
    // The simulator's options follow the script of a dry run.
    const OptionTable::Parsed parsed =
        playerTable(o).parse(arguments, [&o](const QString&) { return o.dryRun; });
    o.help = parsed.help;
    error = parsed.error;
    if (error.isEmpty() && parsed.operands.size() > 1)
        error = QStringLiteral("one script only; \"%1\" is one too many").arg(parsed.operands[1]);
    if (error.isEmpty() && o.dryRun && !parsed.operands.isEmpty()) {
        if (const auto pbx = parseDryRunPbx(parsed.rest, o.pbxModeGiven, error))
            o.pbx = *pbx;
    }
    if (error.isEmpty() && o.check) {
        for (const QString& option : parsed.named) {
            if (!checkOptions.contains(option)) {
                error =
                    QStringLiteral("%1 has no place with --check, which opens nothing").arg(option);
                break;
            }
        }
    } else if (error.isEmpty() && o.json) {
        error = QStringLiteral("--json goes with --check");
    }
    if (error.isEmpty() && o.tcpHost && o.serialPort)
        error = QStringLiteral("--tcp and --serial exclude each other");
    if (error.isEmpty() && !o.help && parsed.operands.isEmpty())
        error = QStringLiteral("no script given");
    if (!error.isEmpty())
        return std::nullopt;
    o.script = parsed.operands.value(0);
    return o;
}

} // namespace larkspur
