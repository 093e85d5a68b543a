#include "tap/tap_options.h"

#include <cmath>

namespace larkspur::tap {

QString tapUsage() {
    return QStringLiteral(
        "usage: larkspur-tap --listen HOST:PORT --pbx HOST:PORT [--connect-timeout SECONDS]\n"
        "       larkspur-tap --pms-serial PORT --pbx-serial PORT [--line SPEED,PARITY,DATA,STOP]\n"
        "       larkspur-tap [--monitor-pms PORT] [--monitor-pbx PORT]\n"
        "                    [--line SPEED,PARITY,DATA,STOP]\n"
        "         each with [--mode HOTEL|VMAIL] [--protocol HYATT|HIS] [--frame-gap MS]\n"
        "                   [--trace FILE] [--learn SCRIPT [--learn-waits]] [--once]\n");
}

QString tapHelp() {
    return tapUsage() + QStringLiteral(R"(
Sits between a PMS and a PBX, relays every byte both ways unchanged, and shows each message
on standard output with its time, direction, transaction and answer.

  --listen HOST:PORT   wait for the PMS here (port 0: any free port, printed at start)
  --pbx HOST:PORT      and connect to the PBX here for each PMS that connects
  --connect-timeout SECONDS
                       how long the PBX may take to accept (default 10)
  --pms-serial PORT    relay between the serial port towards the PMS ...
  --pbx-serial PORT    ... and the one towards the PBX (a number N is the Nth port)
  --monitor-pms PORT   only listen, sending nothing: a receive-only port hearing the PMS
  --monitor-pbx PORT   and one hearing the PBX (a Y-cable); either or both
  --line SPEED,PARITY,DATA,STOP
                       the serial ports' line (default 9600,N,8,1)
  --mode HOTEL|VMAIL   hotel frames, or voice-mail frames with a check character (default
                       HOTEL)
  --protocol HYATT|HIS the voice-mail protocol a learned script names (default HYATT)
  --frame-gap MS       how long a line must be silent before a frame whose end never came is
                       shown as it stands (default: the longer of 100 ms and 20 character
                       times)
  --trace FILE         the trace in FILE as well
  --learn SCRIPT       write what the PMS did as a script: one line per transaction the PBX
                       acknowledged, as the window's recorder writes it, and a closing
                       comment line, so that it replays whole
  --learn-waits        and a WAIT line for each PBX message a wait can expect, its digit
                       from the delay seen (hotel mode)
  --once               end when the first session ends instead of waiting for the next
  --help               show this and exit

At the end (or on SIGINT, SIGTERM, SIGHUP) the trace closes with the statistics table of
larkspur-run.
Exit status: 0 done, 2 a port or the listener could not be opened, 5 the trace or the script
could not be written whole, 64 bad arguments, 129 hung up, 130 interrupted.
)");
}

namespace {

// An option and the value after it.
struct Arguments {
    const QStringList& list;
    qsizetype i = 0;
    QString& error;

    std::optional<QString> value() {
        if (i + 1 >= list.size()) {
            error = QStringLiteral("%1 needs a value").arg(list[i]);
            return std::nullopt;
        }
        return list[++i];
    }
};

std::optional<HostPort> endpoint(Arguments& a, bool withPortZero) {
    const QString option = a.list[a.i];
    const auto text = a.value();
    if (!text)
        return std::nullopt;
    QString why;
    auto parsed = parseHostPort(*text, withPortZero, &why);
    if (!parsed)
        a.error = option + QStringLiteral(": ") + why;
    return parsed;
}

std::optional<QString> port(Arguments& a) {
    const QString option = a.list[a.i];
    auto text = a.value();
    if (text && text->trimmed().isEmpty()) {
        a.error = QStringLiteral("%1 wants a port number or device").arg(option);
        return std::nullopt;
    }
    return text;
}

// Which kind of link the options given so far ask for; a second kind is an error.
bool claim(std::optional<TapOptions::Links>& links, TapOptions::Links wanted, const QString& option,
           QString& error) {
    if (links && *links != wanted) {
        error = QStringLiteral("%1 does not go with the options before it: a TCP relay "
                               "(--listen, --pbx), a serial relay (--pms-serial, --pbx-serial) "
                               "or a monitor (--monitor-pms, --monitor-pbx), one of them")
                    .arg(option);
        return false;
    }
    links = wanted;
    return true;
}

// What the link kind needs and what it does not take.
bool complete(const TapOptions& o, const QStringList& named, QString& error) {
    const auto given = [&](const char* option) { return named.contains(QLatin1String(option)); };
    switch (o.links) {
    case TapOptions::Links::Tcp:
        if (!given("--listen") || !given("--pbx")) {
            error = QStringLiteral("a TCP relay needs --listen and --pbx");
            return false;
        }
        if (given("--line")) {
            error = QStringLiteral("--line goes with serial ports");
            return false;
        }
        break;
    case TapOptions::Links::Serial:
        if (o.pmsPort.isEmpty() || o.pbxPort.isEmpty()) {
            error = QStringLiteral("a serial relay needs --pms-serial and --pbx-serial");
            return false;
        }
        break;
    case TapOptions::Links::Monitor:
        break;
    }
    if (!o.pmsPort.isEmpty() && o.pmsPort == o.pbxPort) {
        error = QStringLiteral("%1 is named for both sides").arg(o.pmsPort);
        return false;
    }
    if (given("--connect-timeout") && o.links != TapOptions::Links::Tcp) {
        error = QStringLiteral("--connect-timeout goes with --pbx");
        return false;
    }
    if (o.learnWaits && o.learn.isEmpty()) {
        error = QStringLiteral("--learn-waits goes with --learn");
        return false;
    }
    if (o.learnWaits && o.mode != PmsMode::Hotel) {
        error = QStringLiteral("--learn-waits: a voice-mail script has no waits");
        return false;
    }
    return true;
}

} // namespace

std::optional<TapOptions> parseTapOptions(const QStringList& arguments, QString& error) {
    TapOptions o;
    std::optional<TapOptions::Links> links;
    QStringList named;
    Arguments a{arguments, 0, error};
    for (; a.i < arguments.size(); ++a.i) {
        const QString& option = arguments[a.i];
        named << option;
        if (option == u"--help" || option == u"-h") {
            o.help = true;
        } else if (option == u"--listen" || option == u"--pbx") {
            if (!claim(links, TapOptions::Links::Tcp, option, error))
                return std::nullopt;
            const auto parsed = endpoint(a, option == u"--listen");
            if (!parsed)
                return std::nullopt;
            (option == u"--listen" ? o.listen : o.pbx) = *parsed;
            if (option == u"--listen" && listenAddress(parsed->host).isNull()) {
                error = QStringLiteral("--listen: \"%1\" is not an address to listen on")
                            .arg(parsed->host);
                return std::nullopt;
            }
        } else if (option == u"--connect-timeout") {
            const auto text = a.value();
            if (!text)
                return std::nullopt;
            bool ok = false;
            o.connectTimeoutSeconds = text->toDouble(&ok);
            if (!ok || !std::isfinite(o.connectTimeoutSeconds) || o.connectTimeoutSeconds <= 0 ||
                o.connectTimeoutSeconds > 3600) {
                error = QStringLiteral("--connect-timeout wants seconds above 0 and up to 3600, "
                                       "not \"%1\"")
                            .arg(*text);
                return std::nullopt;
            }
        } else if (option == u"--pms-serial" || option == u"--pbx-serial" ||
                   option == u"--monitor-pms" || option == u"--monitor-pbx") {
            const bool monitor = option.startsWith(u"--monitor");
            if (!claim(links, monitor ? TapOptions::Links::Monitor : TapOptions::Links::Serial,
                       option, error))
                return std::nullopt;
            const auto name = port(a);
            if (!name)
                return std::nullopt;
            (option.contains(u"pms") ? o.pmsPort : o.pbxPort) = serialDeviceName(*name);
        } else if (option == u"--line") {
            const auto text = a.value();
            if (!text)
                return std::nullopt;
            SerialLine line;
            QString why;
            if (text->split(QLatin1Char(',')).size() != 4 || !parseSerialLine(*text, line, why)) {
                error = QStringLiteral("--line wants SPEED,PARITY,DATA,STOP, not \"%1\"%2")
                            .arg(*text, why.isEmpty() ? QString() : QStringLiteral(": ") + why);
                return std::nullopt;
            }
            o.line = *text;
        } else if (option == u"--mode") {
            const auto text = a.value();
            if (!text)
                return std::nullopt;
            const auto mode = pmsModeNamed(*text);
            if (!mode) {
                error = QStringLiteral("--mode is HOTEL or VMAIL, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            o.mode = *mode;
        } else if (option == u"--protocol") {
            const auto text = a.value();
            if (!text)
                return std::nullopt;
            const auto protocol = protocolNamed(*text);
            if (!protocol) {
                error = QStringLiteral("--protocol is HYATT or HIS, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            o.protocol = *protocol;
        } else if (option == u"--frame-gap") {
            const auto text = a.value();
            if (!text)
                return std::nullopt;
            bool ok = false;
            const int ms = text->toInt(&ok);
            if (!ok || ms < 1 || ms > 60'000) {
                error = QStringLiteral("--frame-gap wants milliseconds from 1 to 60000, not "
                                       "\"%1\"")
                            .arg(*text);
                return std::nullopt;
            }
            o.frameGapMs = ms;
        } else if (option == u"--trace" || option == u"--learn") {
            const auto path = a.value();
            if (!path)
                return std::nullopt;
            if (path->isEmpty()) {
                error = QStringLiteral("%1 wants a file name").arg(option);
                return std::nullopt;
            }
            (option == u"--trace" ? o.trace : o.learn) = *path;
        } else if (option == u"--learn-waits") {
            o.learnWaits = true;
        } else if (option == u"--once") {
            o.once = true;
        } else if (option.startsWith(u'-') && option.size() > 1) {
            error = QStringLiteral("unknown option %1").arg(option);
            return std::nullopt;
        } else {
            error = QStringLiteral("\"%1\" is not an option").arg(option);
            return std::nullopt;
        }
    }
    if (o.help)
        return o;
    if (!links) {
        error = QStringLiteral("nothing to watch: give --listen and --pbx, --pms-serial and "
                               "--pbx-serial, or --monitor-pms and/or --monitor-pbx");
        return std::nullopt;
    }
    o.links = *links;
    if (!complete(o, named, error))
        return std::nullopt;
    if (!o.trace.isEmpty() && o.trace == o.learn) {
        error = QStringLiteral("--trace and --learn name the same file %1").arg(o.trace);
        return std::nullopt;
    }
    return o;
}

} // namespace larkspur::tap
