#include "player/player_options.h"

#include "core/host_port.h"
#include "link/serial_line.h"

#include <QStringList>

#include <cmath>

namespace larkspur {

QString playerUsage() {
    return QStringLiteral(
        "usage: larkspur-run [--tcp HOST:PORT | --serial PORT] [--line SPEED,PARITY,DATA,STOP]\n"
        "                    [--dtr] [--rts] [--null-discard] [--mode HOTEL|VMAIL]\n"
        "                    [--protocol HYATT|HIS] [--error-mode] [--continuous]\n"
        "                    [--connect-timeout SECONDS] [--frame-gap MS] [--no-settings]\n"
        "                    [--save-log FILE]\n"
        "                    [--error-report FILE] [--junit FILE] [--trace FILE] SCRIPT\n"
        "       larkspur-run --check [--json] [--error-mode] SCRIPT\n"
        "       larkspur-run --dry-run [OPTIONS] SCRIPT [--on-enq ANSWERS] [--on-frame ANSWERS]\n"
        "                    [--answer-delay SECONDS] [--echo-offer] [--mode HOTEL|VMAIL]\n"
        "                    [--line-speed BAUD] [--split BYTES] [--split-gap SECONDS]\n"
        "                    [--after MATCH SECONDS TEXT]... [--at SECONDS TEXT]...\n");
}

QString playerHelp() {
    return playerUsage() + QStringLiteral(R"(
Plays SCRIPT against the PBX as the window's Run Script does: the traffic log on standard
output, notices and the run statistics on standard error.

  --frame-gap MS how long the line must be silent before a frame whose end never came is
                 taken as it stands (default: the longer of 100 ms and 20 character times
                 at the line's speed; the window's setting Link/FrameGapMs when it is set)
  --no-settings  ignore the settings the window stored: what the options leave open is the
                 first-run default (TCP 127.0.0.1:15374, line 1200,N,8,2), so the same
                 command runs the same on every machine, as in CI
  --check        read SCRIPT as the runner does and print, without opening any link, each
                 command it will reach with its fields and columns, then what will not play
                 as written; exit 0 clean, 1 with warnings, 3 when the run would stop
  --json         with --check: the same as one JSON object
  --error-mode   with --check: check as a run in Error Mode will send
  --dry-run      play SCRIPT against the simulator inside this process, in virtual time:
                 the same run and output as against larkspur-pbxsim, in a fraction of a
                 second, with no socket or device opened; the simulator's options follow
                 SCRIPT and set how it answers, as larkspur-pbxsim(1) describes

Exit status: 0 clean, 1 failed transactions or waits, 2 no link, 3 bad script, 4 link lost,
5 a report or the traffic log could not be written whole, 64 bad arguments, 129 hung up,
130 interrupted.
)");
}

namespace {
// Options of the simulator that have no place inside larkspur-run.
const QStringList outsideDryRun = {"--listen", "--pty", "--trace", "--help", "-h"};

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
} // namespace

std::optional<PlayerOptions> parsePlayerOptions(const QStringList& arguments, QString& error) {
    PlayerOptions o;
    QStringList named;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        if (a.startsWith(u"-") && a.size() > 1)
            named << a;
        const auto value = [&](QString& out) {
            if (i + 1 >= arguments.size()) {
                error = QStringLiteral("%1 needs a value").arg(a);
                return false;
            }
            out = arguments[++i];
            return true;
        };
        QString v;
        if (a == u"--help" || a == u"-h") {
            o.help = true;
        } else if (a == u"--tcp") {
            if (!value(v))
                return std::nullopt;
            QString why;
            const auto endpoint = parseHostPort(v, false, &why);
            if (!endpoint) {
                error = QStringLiteral("--tcp: ") + why;
                return std::nullopt;
            }
            o.tcpHost = endpoint->host;
            o.tcpPort = QString::number(endpoint->port);
        } else if (a == u"--serial") {
            if (!value(v))
                return std::nullopt;
            if (v.isEmpty()) {
                error = QStringLiteral("--serial wants a port number or device");
                return std::nullopt;
            }
            o.serialPort = v;
        } else if (a == u"--line") {
            if (!value(v))
                return std::nullopt;
            SerialLine line;
            QString why;
            if (v.split(QLatin1Char(',')).size() != 4 || !parseSerialLine(v, line, why)) {
                error = QStringLiteral("--line wants SPEED,PARITY,DATA,STOP, not \"%1\"%2")
                            .arg(v, why.isEmpty() ? QString() : QStringLiteral(": ") + why);
                return std::nullopt;
            }
            o.line = v;
        } else if (a == u"--dtr") {
            o.dtr = true;
        } else if (a == u"--rts") {
            o.rts = true;
        } else if (a == u"--null-discard") {
            o.nullDiscard = true;
        } else if (a == u"--mode") {
            if (!value(v))
                return std::nullopt;
            o.mode = pmsModeNamed(v);
            if (!o.mode) {
                error = QStringLiteral("--mode is HOTEL or VMAIL, not \"%1\"").arg(v);
                return std::nullopt;
            }
        } else if (a == u"--protocol") {
            if (!value(v))
                return std::nullopt;
            o.protocol = protocolNamed(v);
            if (!o.protocol) {
                error = QStringLiteral("--protocol is HYATT or HIS, not \"%1\"").arg(v);
                return std::nullopt;
            }
        } else if (a == u"--error-mode") {
            o.errorMode = true;
        } else if (a == u"--continuous") {
            o.continuous = true;
        } else if (a == u"--connect-timeout") {
            if (!value(v))
                return std::nullopt;
            bool ok = false;
            o.connectTimeoutSeconds = v.toDouble(&ok);
            if (!ok || !std::isfinite(o.connectTimeoutSeconds) || o.connectTimeoutSeconds <= 0) {
                error = QStringLiteral("--connect-timeout wants a number of seconds above 0, "
                                       "not \"%1\"")
                            .arg(v);
                return std::nullopt;
            }
        } else if (a == u"--frame-gap") {
            if (!value(v))
                return std::nullopt;
            bool ok = false;
            const int ms = v.toInt(&ok);
            if (!ok || ms < 1 || ms > 60'000) {
                error = QStringLiteral("--frame-gap wants a number of milliseconds from 1 to "
                                       "60000, not \"%1\"")
                            .arg(v);
                return std::nullopt;
            }
            o.frameGapMs = ms;
        } else if (a == u"--no-settings") {
            o.noSettings = true;
        } else if (a == u"--save-log") {
            if (!value(o.saveLog))
                return std::nullopt;
        } else if (a == u"--error-report") {
            if (!value(o.errorReport))
                return std::nullopt;
        } else if (a == u"--junit") {
            if (!value(o.junit))
                return std::nullopt;
        } else if (a == u"--trace") {
            if (!value(o.trace))
                return std::nullopt;
        } else if (a == u"--check") {
            o.check = true;
        } else if (a == u"--json") {
            o.json = true;
        } else if (a == u"--dry-run") {
            o.dryRun = true;
        } else if (a.startsWith(u"-") && a.size() > 1) {
            error = QStringLiteral("unknown option %1").arg(a);
            return std::nullopt;
        } else if (o.script.isEmpty()) {
            o.script = a;
            // The simulator's options follow the script of a dry run.
            if (o.dryRun) {
                const auto pbx = parseDryRunPbx(arguments.mid(i + 1), o.pbxModeGiven, error);
                if (!pbx)
                    return std::nullopt;
                o.pbx = *pbx;
                break;
            }
        } else {
            error = QStringLiteral("one script only; \"%1\" is one too many").arg(a);
            return std::nullopt;
        }
    }
    if (o.check) {
        for (const QString& option : std::as_const(named)) {
            if (option != u"--check" && option != u"--json" && option != u"--error-mode" &&
                option != u"--help" && option != u"-h") {
                error =
                    QStringLiteral("%1 has no place with --check, which opens nothing").arg(option);
                return std::nullopt;
            }
        }
    } else if (o.json) {
        error = QStringLiteral("--json goes with --check");
        return std::nullopt;
    }
    if (o.tcpHost && o.serialPort) {
        error = QStringLiteral("--tcp and --serial exclude each other");
        return std::nullopt;
    }
    if (!o.help && o.script.isEmpty()) {
        error = QStringLiteral("no script given");
        return std::nullopt;
    }
    return o;
}

} // namespace larkspur
