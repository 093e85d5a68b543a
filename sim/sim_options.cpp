#include "sim/sim_options.h"

#include "core/host_port.h"
#include "core/option_table.h"
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

namespace {

QString seconds(const QString& text, double& into) {
    const std::optional<double> s = secondsFrom(text);
    if (!s)
        return QStringLiteral("\"%1\" is not a number of seconds from 0 to %2")
            .arg(text)
            .arg(maxSeconds);
    into = *s;
    return QString();
}

QString message(const QString& text, bool framed, QByteArray& into) {
    QString why;
    into = framed ? parseMessage(text, &why) : parseReadable(text, &why);
    return why.isEmpty() ? QString() : QStringLiteral("\"%1\": %2").arg(text, why);
}

// Appends `item` when none of the `reasons` its values gave is a reason to refuse it; the first
// reason otherwise.
template <typename T>
QString appendWhole(QList<T>& list, const T& item, std::initializer_list<QString> reasons) {
    for (const QString& why : reasons)
        if (!why.isEmpty())
            return why;
    list.append(item);
    return QString();
}

TakeValues answers(QList<Answer>& first, Answer& then) {
    return [&first, &then](const QStringList& values) {
        QString wrong;
        std::optional<QList<Answer>> named = answersNamed(values.at(0), wrong);
        if (!named)
            return QStringLiteral("\"%1\" is not ack, nak or silent").arg(wrong);
        then = named->takeLast();
        first = *named;
        return QString();
    };
}

TakeValues takeSecondsFrom0(double& into) {
    return takeSeconds(into, 0, maxSeconds, true);
}

// The options, writing into `o`; `listenGiven` learns whether --listen came.
OptionTable simTable(SimOptions& o, bool& listenGiven) {
    return OptionTable(
        QStringLiteral("larkspur-pbxsim"),
        {
            {"--listen",
             {"HOST:PORT"},
             "listen for the console on TCP (default 127.0.0.1:15374; port 0 picks one)",
             [&o, &listenGiven](const QStringList& v) {
                 listenGiven = true;
                 QString why;
                 return readEndpoint(v.at(0), o, &why) ? QString() : why;
             }},
            {"--pty",
             {"LINK"},
             "open a pseudo-terminal for a serial console; LINK becomes a symlink to it\n"
             "(with --pty alone, no TCP listener unless --listen is given too)",
             [&o](const QStringList& v) {
                 o.pty = true;
                 o.ptyLink = v.value(0);
                 return QString();
             },
             true},
            valueOption("--mode", "HOTEL|VMAIL", takeMode(o.mode),
                        "VMAIL frames carry a check character after the ETX (default HOTEL)"),
            valueOption("--on-enq", "ANSWERS", answers(o.firstEnqAnswers, o.onEnq),
                        "answer to a bare ENQ: ack, nak or silent (default ack); a list such as\n"
                        "nak,nak,ack answers the first ENQs of each connect in turn and repeats\n"
                        "the last answer for the rest"),
            valueOption("--on-frame", "ANSWERS", answers(o.firstFrameAnswers, o.onFrame),
                        "answer to a frame, the same way (default ack)"),
            valueOption("--answer-delay", "SECONDS", takeSecondsFrom0(o.answerDelaySeconds),
                        "wait that long before each of those answers (default 0: at once)"),
            valueOption("--line-speed", "BAUD", takeWhole(o.pacing.baud, 50, maxBaud),
                        "write what the PBX sends one byte at a time, each taking ten bits' time\n"
                        "at BAUD, as a serial line delivers it (1200 baud: 8.3 ms a byte)"),
            valueOption("--split", "BYTES", takeWhole(o.pacing.pieceBytes, 1, maxPieceBytes),
                        "cut every message the PBX sends into pieces of BYTES, as a USB adapter\n"
                        "or a serial-to-TCP converter hands them over (with --line-speed, each\n"
                        "piece leaves once its bytes have crossed the line)"),
            valueOption("--split-gap", "SECONDS", takeSecondsFrom0(o.pacing.pieceGapSeconds),
                        "the pause after each piece of a cut message (default 0.02)"),
            flagOption("--echo-offer", o.echoOffer,
                       "send the Telnet offer to echo (255 251 1) on each TCP connect"),
            {"--at",
             {"SECONDS", "TEXT"},
             "send TEXT that many seconds after each connect (the pty counts as\n"
             "connected when it is opened)",
             [&o](const QStringList& v) {
                 TimedMessage at;
                 return appendWhole(
                     o.at, at, {seconds(v.at(0), at.seconds), message(v.at(1), true, at.bytes)});
             },
             false,
             true},
            {"--after",
             {"MATCH", "SECONDS", "TEXT"},
             "send TEXT that many seconds after the answer to a frame whose text\n"
             "starts with MATCH",
             [&o](const QStringList& v) {
                 FollowUp after;
                 return appendWhole(o.after, after,
                                    {message(v.at(0), false, after.match),
                                     seconds(v.at(1), after.seconds),
                                     message(v.at(2), true, after.bytes)});
             },
             false,
             true},
            valueOption("--trace", "FILE", takeText(o.traceFile),
                        "write the trace to FILE as well as to standard output"),
        });
}

} // namespace

ParsedArguments parseSimArguments(const QStringList& arguments) {
    SimOptions options;
    bool listenGiven = false;
    const OptionTable::Parsed parsed = simTable(options, listenGiven).parse(arguments);
    options.help = parsed.help;
    if (parsed.error.isEmpty() && !parsed.operands.isEmpty())
        return {std::nullopt, QStringLiteral("unexpected argument \"%1\"").arg(parsed.operands[0])};
    if (!parsed.error.isEmpty())
        return {std::nullopt, parsed.error};
    options.listen = listenGiven || !options.pty;
    return {options, {}, parsed.named};
}

QString simUsage() {
    SimOptions o;
    bool listenGiven = false;
    return simTable(o, listenGiven).usage();
}

QString simHelp() {
    SimOptions o;
    bool listenGiven = false;
    return simTable(o, listenGiven)
        .help(
            QStringLiteral("Plays the PBX side of the PMS link.\n"),
            QStringLiteral(
                R"(TEXT and MATCH are written in a readable notation: <STX> <ETX> <ENQ> <ACK> <NAK>, <BCC> (the
check character of what follows the last <STX>), \xHH for any byte, \\ for a backslash, \x3C
for a literal '<'. A TEXT without an STX is framed as STX + TEXT + ETX, unless it is only
<ENQ>, <ACK> or <NAK>, which are sent bare. Each line typed on standard input is sent the same
way.

Every read and write is traced as "HH:MM:SS.mmm RX|TX <bytes>"; status lines start with "# ".
)"));
}

} // namespace larkspur::sim
