#pragma once

#include "core/pms_mode.h"
#include "sim/paced_writer.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace larkspur::sim {

// How the simulator answers an ENQ or a frame from the console.
enum class Answer { Ack, Nak, Silent };

// HOTEL frames are STX..ETX; VMAIL frames carry a check character after the ETX.
using Mode = PmsMode;

// --at: bytes sent a number of seconds after each connect.
struct TimedMessage {
    double seconds = 0;
    QByteArray bytes;
};

// --after: bytes sent a number of seconds after a frame whose text starts with `match`.
struct FollowUp {
    QByteArray match;
    double seconds = 0;
    QByteArray bytes;
};

struct SimOptions {
    bool listen = true;
    QHostAddress listenAddress = QHostAddress::LocalHost;
    quint16 listenPort = 15374;
    bool pty = false;
    QString ptyLink; // empty: no symlink
    Mode mode = Mode::Hotel;
    // --on-enq and --on-frame: the answers to the first ENQs (frames) of a connection, one each
    // in turn, then onEnq (onFrame) to every later one.
    QList<Answer> firstEnqAnswers;
    Answer onEnq = Answer::Ack;
    QList<Answer> firstFrameAnswers;
    Answer onFrame = Answer::Ack;
    // --answer-delay: how long the PBX takes to answer an ENQ or a frame; 0 answers within the
    // read.
    double answerDelaySeconds = 0;
    bool echoOffer = false;
    // --line-speed, --split and --split-gap: how what the PBX sends crosses the line.
    LinePacing pacing;
    QList<TimedMessage> at;
    QList<FollowUp> after;
    QString traceFile; // empty: standard output only
    bool help = false;
};

struct ParsedArguments {
    std::optional<SimOptions> options; // empty when the arguments are wrong
    QString error;
    // The options given, in order, for a program that takes only some of them.
    QStringList named = {};
};

// Reads the command line (without the program name).
ParsedArguments parseSimArguments(const QStringList& arguments);

// The synopsis, for error messages.
QString simUsage();

// The synopsis and what each option does, for --help.
QString simHelp();

} // namespace larkspur::sim
