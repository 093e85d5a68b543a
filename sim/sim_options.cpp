#include "sim/sim_options.h"

#include "core/host_port.h"
#include "protocol/readable_notation.h"

#include <cmath>

namespace larkspur::sim {

namespace {

// Longest delay a timer can hold in milliseconds, rounded down to a readable limit.
constexpr int maxSeconds = 1000000;
constexpr int maxBaud = 4000000;
constexpr int maxPieceBytes = 65536;

std::optional<Answer> answerNamed(const QString& name) {
    if (name == u"ack")
        return Answer::Ack;
    if (name == u"nak")
        return Answer::Nak;
    if (name == u"silent")
        return Answer::Silent;
    return std::nullopt;
}

// "nak,nak,ack": each answer in turn. Empty with the first wrong name in `wrong`.
std::optional<QList<Answer>> answersNamed(const QString& names, QString& wrong) {
    QList<Answer> answers;
    for (const QString& name : names.split(u',')) {
        const auto answer = answerNamed(name);
        if (!answer) {
            wrong = name;
            return std::nullopt;
        }
        answers.append(*answer);
    }
    return answers;
}

std::optional<double> secondsFrom(const QString& text) {
    bool ok = false;
    const double seconds = text.toDouble(&ok);
    if (!ok || !std::isfinite(seconds) || seconds < 0 || seconds > maxSeconds)
        return std::nullopt;
    return seconds;
}

// HOST:PORT as larkspur-run reads it.
bool readEndpoint(const QString& text, SimOptions& options, QString* error) {
    const auto endpoint = parseHostPort(text, true, error);
    if (!endpoint)
        return false;
    const QHostAddress address = listenAddress(endpoint->host);
    if (address.isNull()) {
        if (error)
            *error = QStringLiteral("\"%1\" is not an address to listen on").arg(endpoint->host);
        return false;
    }
    options.listenAddress = address;
    options.listenPort = endpoint->port;
    return true;
}

} // namespace

ParsedArguments parseSimArguments(const QStringList& arguments) {
    SimOptions options;
    QStringList named;
    bool listenGiven = false;
    qsizetype i = 0;
    QString error;

    // The next argument as the value of `option`, or empty with `error` set.
    auto value = [&](const QString& option) -> std::optional<QString> {
        if (i + 1 >= arguments.size()) {
            error = option + QStringLiteral(" needs a value");
            return std::nullopt;
        }
        return arguments.at(++i);
    };
    auto seconds = [&](const QString& option) -> std::optional<double> {
        const auto text = value(option);
        if (!text)
            return std::nullopt;
        const auto s = secondsFrom(*text);
        if (!s)
            error = QStringLiteral("%1: \"%2\" is not a number of seconds from 0 to %3")
                        .arg(option, *text, QString::number(maxSeconds));
        return s;
    };
    auto whole = [&](const QString& option, int low, int high) -> std::optional<int> {
        const auto text = value(option);
        if (!text)
            return std::nullopt;
        bool ok = false;
        const int n = text->toInt(&ok);
        if (!ok || n < low || n > high) {
            error = QStringLiteral("%1: \"%2\" is not a whole number from %3 to %4")
                        .arg(option, *text)
                        .arg(low)
                        .arg(high);
            return std::nullopt;
        }
        return n;
    };
    auto message = [&](const QString& option, bool framed) -> std::optional<QByteArray> {
        const auto text = value(option);
        if (!text)
            return std::nullopt;
        QString why;
        const QByteArray bytes = framed ? parseMessage(*text, &why) : parseReadable(*text, &why);
        if (!why.isEmpty()) {
            error = QStringLiteral("%1 \"%2\": %3").arg(option, *text, why);
            return std::nullopt;
        }
        return bytes;
    };

    for (; i < arguments.size() && error.isEmpty(); ++i) {
        const QString& arg = arguments.at(i);
        if (arg.startsWith(u'-'))
            named << arg;
        if (arg == u"--help" || arg == u"-h") {
            options.help = true;
        } else if (arg == u"--listen") {
            const auto endpoint = value(arg);
            QString why;
            if (endpoint && !readEndpoint(*endpoint, options, &why))
                error = QStringLiteral("--listen: ") + why;
            listenGiven = true;
        } else if (arg == u"--pty") {
            options.pty = true;
            if (i + 1 < arguments.size() && !arguments.at(i + 1).startsWith(u"--"))
                options.ptyLink = arguments.at(++i);
        } else if (arg == u"--mode") {
            const auto mode = value(arg);
            if (const std::optional<Mode> chosen = mode ? pmsModeNamed(*mode) : std::nullopt)
                options.mode = *chosen;
            else if (mode)
                error = QStringLiteral("--mode: \"%1\" is not HOTEL or VMAIL").arg(*mode);
        } else if (arg == u"--on-enq" || arg == u"--on-frame") {
            const auto names = value(arg);
            QString wrong;
            auto answers = names ? answersNamed(*names, wrong) : std::nullopt;
            const bool enq = arg == u"--on-enq";
            if (answers) {
                (enq ? options.onEnq : options.onFrame) = answers->takeLast();
                (enq ? options.firstEnqAnswers : options.firstFrameAnswers) = *answers;
            } else if (names) {
                error = QStringLiteral("%1: \"%2\" is not ack, nak or silent").arg(arg, wrong);
            }
        } else if (arg == u"--answer-delay") {
            if (const auto s = seconds(arg))
                options.answerDelaySeconds = *s;
        } else if (arg == u"--line-speed") {
            if (const auto n = whole(arg, 50, maxBaud))
                options.pacing.baud = *n;
        } else if (arg == u"--split") {
            if (const auto n = whole(arg, 1, maxPieceBytes))
                options.pacing.pieceBytes = *n;
        } else if (arg == u"--split-gap") {
            if (const auto s = seconds(arg))
                options.pacing.pieceGapSeconds = *s;
        } else if (arg == u"--echo-offer") {
            options.echoOffer = true;
        } else if (arg == u"--at") {
            const auto s = seconds(arg);
            const auto bytes = s ? message(arg, true) : std::nullopt;
            if (bytes)
                options.at.append({*s, *bytes});
        } else if (arg == u"--after") {
            const auto match = message(arg, false);
            const auto s = match ? seconds(arg) : std::nullopt;
            const auto bytes = s ? message(arg, true) : std::nullopt;
            if (bytes)
                options.after.append({*match, *s, *bytes});
        } else if (arg == u"--trace") {
            if (const auto file = value(arg))
                options.traceFile = *file;
        } else if (arg.startsWith(u'-')) {
            error = QStringLiteral("unknown option %1").arg(arg);
        } else {
            error = QStringLiteral("unexpected argument \"%1\"").arg(arg);
        }
    }
    if (!error.isEmpty())
        return {std::nullopt, error};
    options.listen = listenGiven || !options.pty;
    return {options, {}, named};
}

QString simUsage() {
    return QStringLiteral(
        "usage: larkspur-pbxsim [--listen HOST:PORT] [--pty [LINK]] [--mode HOTEL|VMAIL]\n"
        "                       [--on-enq ANSWERS] [--on-frame ANSWERS] [--answer-delay SECONDS]\n"
        "                       [--line-speed BAUD] [--split BYTES] [--split-gap SECONDS]\n"
        "                       [--echo-offer] [--after MATCH SECONDS TEXT]... "
        "[--at SECONDS TEXT]...\n"
        "                       [--trace FILE]\n");
}

QString simHelp() {
    return simUsage() + QStringLiteral(R"(
Plays the PBX side of the PMS link.

  --listen HOST:PORT  listen for the console on TCP (default 127.0.0.1:15374; port 0 picks one)
  --pty [LINK]        open a pseudo-terminal for a serial console; LINK becomes a symlink to it
                      (with --pty alone, no TCP listener unless --listen is given too)
  --mode HOTEL|VMAIL  VMAIL frames carry a check character after the ETX (default HOTEL)
  --on-enq ANSWERS    answer to a bare ENQ: ack, nak or silent (default ack); a list such as
                      nak,nak,ack answers the first ENQs of each connect in turn and repeats
                      the last answer for the rest
  --on-frame ANSWERS  answer to a frame, the same way (default ack)
  --answer-delay SECONDS
                      wait that long before each of those answers (default 0: at once)
  --line-speed BAUD   write what the PBX sends one byte at a time, each taking ten bits' time
                      at BAUD, as a serial line delivers it (1200 baud: 8.3 ms a byte)
  --split BYTES       cut every message the PBX sends into pieces of BYTES, as a USB adapter
                      or a serial-to-TCP converter hands them over (with --line-speed, each
                      piece leaves once its bytes have crossed the line)
  --split-gap SECONDS the pause after each piece of a cut message (default 0.02)
  --echo-offer        send the Telnet offer to echo (255 251 1) on each TCP connect
  --at SECONDS TEXT   send TEXT that many seconds after each connect (the pty counts as
                      connected when it is opened)
  --after MATCH SECONDS TEXT
                      send TEXT that many seconds after the answer to a frame whose text
                      starts with MATCH
  --trace FILE        write the trace to FILE as well as to standard output

TEXT and MATCH are written in a readable notation: <STX> <ETX> <ENQ> <ACK> <NAK>, <BCC> (the
check character of what follows the last <STX>), \xHH for any byte, \\ for a backslash, \x3C
for a literal '<'. A TEXT without an STX is framed as STX + TEXT + ETX, unless it is only
<ENQ>, <ACK> or <NAK>, which are sent bare. Each line typed on standard input is sent the same
way.

Every read and write is traced as "HH:MM:SS.mmm RX|TX <bytes>"; status lines start with "# ".
)");
}

} // namespace larkspur::sim
