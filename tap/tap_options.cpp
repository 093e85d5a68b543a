#include "tap/tap_options.h"

#include "core/option_table.h"

namespace larkspur::tap {

namespace {

// A port towards one side: a number N is the Nth port.
TakeValues takePort(QString& into) {
    return [&into](const QStringList& v) {
        if (v.at(0).trimmed().isEmpty())
            return QStringLiteral("wants a port number or device");
        into = serialDeviceName(v.at(0));
        return QString();
    };
}

TakeValues takeEndpoint(HostPort& into, bool listening) {
    return [&into, listening](const QStringList& v) {
        QString why;
        const auto parsed = parseHostPort(v.at(0), listening, &why);
        if (!parsed)
            return why;
        if (listening && listenAddress(parsed->host).isNull())
            return QStringLiteral("\"%1\" is not an address to listen on").arg(parsed->host);
        into = *parsed;
        return QString();
    };
}

// The options, writing into `o`.
OptionTable tapTable(TapOptions& o) {
    return OptionTable(
        QStringLiteral("larkspur-tap"),
        {
            valueOption("--listen", "HOST:PORT", takeEndpoint(o.listen, true),
                        "wait for the PMS here (port 0: any free port, printed at start)"),
            valueOption("--pbx", "HOST:PORT", takeEndpoint(o.pbx, false),
                        "and connect to the PBX here for each PMS that connects"),
            valueOption("--connect-timeout", "SECONDS",
                        takeSeconds(o.connectTimeoutSeconds, 0, 3600),
                        "how long the PBX may take to accept (default 10)"),
            valueOption("--pms-serial", "PORT", takePort(o.pmsPort),
                        "relay between the serial port towards the PMS ..."),
            valueOption("--pbx-serial", "PORT", takePort(o.pbxPort),
                        "... and the one towards the PBX (a number N is the Nth port)"),
            valueOption("--monitor-pms", "PORT", takePort(o.pmsPort),
                        "only listen, sending nothing: a receive-only port hearing the PMS"),
            valueOption("--monitor-pbx", "PORT", takePort(o.pbxPort),
                        "and one hearing the PBX (a Y-cable); either or both"),
            lineOption(o.line, "the serial ports' line (default 9600,N,8,1)"),
            valueOption(
                "--mode", "HOTEL|VMAIL", takeMode(o.mode),
                "hotel frames, or voice-mail frames with a check character (default HOTEL)"),
            valueOption("--protocol", "HYATT|HIS", takeProtocol(o.protocol),
                        "the voice-mail protocol a learned script names (default HYATT)"),
            frameGapOption(o.frameGapMs),
            flagOption("--split-joined", o.splitJoined,
                       "a read that holds several whole messages is taken message by message, as\n"
                       "larkspur-run --split-joined takes it, without a note"),
            valueOption("--trace", "FILE", takeText(o.trace), "the trace in FILE as well"),
            valueOption("--report", "FILE", takeText(o.report),
                        "write FILE.html at the end, a page of the session for a browser: its\n"
                        "failures first, then every exchange drawn between the PMS and the PBX"),
            valueOption("--learn", "SCRIPT", takeText(o.learn),
                        "write what the PMS did as a script: one line per transaction the PBX\n"
                        "acknowledged, as the window's recorder writes it, and a closing\n"
                        "comment line, so that it replays whole"),
            flagOption("--learn-waits", o.learnWaits,
                       "and a WAIT line for each PBX message a wait can expect, its digit\n"
                       "from the delay seen (hotel mode)"),
            flagOption("--once", o.once,
                       "end when the first session ends instead of waiting for the next"),
        });
}

const QString aboutTap = QStringLiteral(
    "Sits between a PMS and a PBX, relays every byte both ways unchanged, and shows each message\n"
    "on standard output with its time, direction, transaction and answer. Give --listen and\n"
    "--pbx for a TCP relay, --pms-serial and --pbx-serial for a serial relay, or --monitor-pms\n"
    "and/or --monitor-pbx for a passive monitor.\n");

const QString afterTap = QStringLiteral(
    "At the end (or on SIGINT, SIGTERM, SIGHUP) the trace closes with the statistics table of\n"
    "larkspur-run, and the --report page is written.\n"
    "Exit status: 0 done, 2 a port or the listener could not be opened, 5 the trace, the script\n"
    "or the report could not be written whole, 64 bad arguments, 129 hung up, 130 interrupted.\n");

// The kind of link an option asks for, if any.
std::optional<TapOptions::Links> linksOf(const QString& option) {
    if (option == u"--listen" || option == u"--pbx")
        return TapOptions::Links::Tcp;
    if (option == u"--pms-serial" || option == u"--pbx-serial")
        return TapOptions::Links::Serial;
    if (option == u"--monitor-pms" || option == u"--monitor-pbx")
        return TapOptions::Links::Monitor;
    return std::nullopt;
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

QString tapUsage() {
    TapOptions o;
    return tapTable(o).usage();
}

QString tapHelp() {
    TapOptions o;
    return tapTable(o).help(aboutTap, afterTap);
}

std::optional<TapOptions> parseTapOptions(const QStringList& arguments, QString& error) {
    TapOptions o;
    const OptionTable::Parsed parsed = tapTable(o).parse(arguments);
    o.help = parsed.help;
    error = parsed.error;
    if (error.isEmpty() && !parsed.operands.isEmpty())
        error = QStringLiteral("\"%1\" is not an option").arg(parsed.operands[0]);
    if (!error.isEmpty())
        return std::nullopt;
    if (o.help)
        return o;
    std::optional<TapOptions::Links> links;
    for (const QString& option : parsed.named) {
        const std::optional<TapOptions::Links> wanted = linksOf(option);
        if (wanted && !claim(links, *wanted, option, error))
            return std::nullopt;
    }
    if (!links) {
        error = QStringLiteral("nothing to watch: give --listen and --pbx, --pms-serial and "
                               "--pbx-serial, or --monitor-pms and/or --monitor-pbx");
        return std::nullopt;
    }
    o.links = *links;
    if (!complete(o, parsed.named, error))
        return std::nullopt;
    const std::pair<const char*, QString> outputs[] = {
        {"--trace", o.trace}, {"--learn", o.learn}, {"--report", o.report}};
    for (size_t i = 0; i < std::size(outputs); ++i) {
        for (size_t j = 0; j < i; ++j) {
            if (!outputs[i].second.isEmpty() && outputs[i].second == outputs[j].second) {
                error = QStringLiteral("%1 and %2 name the same file %3")
                            .arg(outputs[j].first, outputs[i].first, outputs[i].second);
                return std::nullopt;
            }
        }
    }
    return o;
}

} // namespace larkspur::tap
