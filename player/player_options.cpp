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
        "                    [--connect-timeout SECONDS] [--save-log FILE]\n"
        "                    [--error-report FILE] [--junit FILE] [--trace FILE] SCRIPT\n");
}

std::optional<PlayerOptions> parsePlayerOptions(const QStringList& arguments, QString& error) {
    PlayerOptions o;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
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
        } else if (a.startsWith(u"-") && a.size() > 1) {
            error = QStringLiteral("unknown option %1").arg(a);
            return std::nullopt;
        } else if (o.script.isEmpty()) {
            o.script = a;
        } else {
            error = QStringLiteral("one script only; \"%1\" is one too many").arg(a);
            return std::nullopt;
        }
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
