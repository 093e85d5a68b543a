// The script reader and the interpreter: arbitrary file bytes, read and played against the
// simulated PBX in virtual time.
//
// Input: two bytes of settings, then the script file:
//   byte 1: bit 0 Continuous, bits 1-2 the PBX's answer to ENQ and bits 3-4 to a frame (0 ACK,
//           1 NAK, 2 silence, 3 ACK), bit 5 error mode, bit 6 the serial link is active
//   byte 2: bits 0-1 what the PBX sends 1.5 s after each frame (nothing, "STS<n> " + the
//           frame's last five characters, "MR 0001" + the same, the RQINZ frame), bit 2 the
//           run is stopped as closing the window does (stop request and CANCEL) rather than
//           with CANCEL alone, bit 3 the clock starts ten seconds before midnight
//
// The check must tell the run's truth: for every command the run plays, the check's row lists
// the lines the transaction logs for refused fields and the messages it sends (when the PBX
// takes each, with no message of its own in between); a row it calls clean is played without a
// refusal and sends the fields the check read, in their columns; a row it says is not as
// written is one where the run refuses a field, sends nothing, or sends something else.
//
// A replay is bounded: after maxCommands commands or stopAfterMs of virtual time the harness
// presses CANCEL (again after each command and every virtual second, since each
// expected-message wait clears it). A Continuous script starts over for ever otherwise; that is
// how it is meant to work. A wait for an ACK that starts in the last seconds of the day ends
// only on an answer or a stop request, as it should; so when CANCEL has not ended the run
// within stopRequestAfterMs, the harness asks for a stop as closing the window does.
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "doubles/simulated_pbx.h"
#include "fuzz/fuzz_support.h"
#include "protocol/frame.h"
#include "script/script_check.h"
#include "script/script_engine.h"
#include "script/script_reader.h"
#include "transactions/session.h"

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

using namespace larkspur;
using namespace larkspur::fuzz;

namespace {

constexpr int maxCommands = 40;
constexpr qint64 stopAfterMs = 300'000;
constexpr int stopRequestAfterMs = 60'000;
// Commands still started after the first CANCEL; more means the script does not stop.
constexpr int commandsAfterStop = 200;

sim::Answer answerOf(int bits) {
    static const sim::Answer answers[] = {sim::Answer::Ack, sim::Answer::Nak, sim::Answer::Silent,
                                          sim::Answer::Ack};
    return answers[bits & 3];
}

// The script file lives in memory; the runner opens it by path as it opens any file.
class ScriptFile {
public:
    ScriptFile() : m_fd(memfd_create("larkspur-script", 0)) {
        FUZZ_CHECK(m_fd >= 0, "memfd_create");
        m_path = QStringLiteral("/proc/self/fd/%1").arg(m_fd);
    }
    const QString& write(const QByteArray& bytes) {
        FUZZ_CHECK(ftruncate(m_fd, 0) == 0, "ftruncate");
        FUZZ_CHECK(pwrite(m_fd, bytes.constData(), size_t(bytes.size()), 0) == bytes.size(),
                   "pwrite");
        return m_path;
    }

private:
    int m_fd;
    QString m_path;
};

void checkRead(const ScriptText& script) {
    FUZZ_CHECK(script.pmsMode == PmsMode::Hotel || script.pmsMode == PmsMode::Vmail, "mode");
    FUZZ_CHECK(script.protocolType == Protocol::Hyatt || script.protocolType == Protocol::His,
               "protocol");
    FUZZ_CHECK(script.text.endsWith(char(ctl::ETX)), "the script text ends in ETX");
    const QString lines = QString::fromLatin1(script.text.chopped(1));
    FUZZ_CHECK(lines.isEmpty() || lines.endsWith(u"\r\n"), "every kept line ends in CR LF");
    QStringList kept = lines.split(QStringLiteral("\r\n"));
    kept.removeLast();
    qsizetype position = 1;
    int previousLine = 0;
    for (const QString& line : std::as_const(kept)) {
        FUZZ_CHECK(!line.contains(u'\r') && !line.contains(u'\n'), "a line holds no line end");
        FUZZ_CHECK(!trimBlanks(line).isEmpty() && !line.startsWith(u';') &&
                       !line.contains(u"VMAIL"),
                   "lines of blanks, comments and VMAIL lines are left out");
        const int fileLine = script.fileLineAt(position);
        FUZZ_CHECK(fileLine > previousLine, "kept lines keep their order in the file");
        previousLine = fileLine;
        position += line.size() + 2;
    }
    FUZZ_CHECK(script.fileLineAt(position) == 0, "the ETX stands on no line");
}

// The lines of the file as the reader splits them: at CR LF, CR or LF.
QList<QByteArray> fileLines(const QByteArray& bytes) {
    QList<QByteArray> lines;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\r' && bytes[i] != '\n')
            continue;
        lines << bytes.mid(begin, i - begin);
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i;
        begin = i + 1;
    }
    if (begin < bytes.size())
        lines << bytes.mid(begin);
    return lines;
}

// What one played command did: the frames it wrote and the fields it refused.
struct Played {
    QList<QByteArray> frames;
    QStringList refusals;
};

// The check's rows of played commands against what the run did with them.
void checkForesight(const QList<CheckRow>& rows, const QList<Played>& played,
                    const QByteArray& file, bool vmail, bool pbxTakesAll) {
    const QList<QByteArray> lines = fileLines(file);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const CheckRow& row = rows[i];
        const Played& run = played[i];
        FUZZ_CHECK(run.refusals == row.refusals, "the check foresees every refused field");
        FUZZ_CHECK(row.asWritten || row.warned, "what is not as written is warned");
        if (pbxTakesAll) {
            QList<QByteArray> foreseen;
            for (const QString& body : row.sends)
                foreseen << (vmail ? body.toLatin1() : '\x02' + body.toLatin1() + '\x03');
            FUZZ_CHECK(run.frames == foreseen, "the check foresees every message sent");
        }
        if (run.frames.isEmpty() || row.line < 1)
            continue;
        // The first frame against the fields as read and the line as written.
        const QByteArray& first = run.frames.first();
        // Blanks that end a linked-suite line are nothing, in its last member too.
        const bool suite = row.command.startsWith(u"STE");
        bool verbatim = true;
        for (const CheckedField& f : row.fields) {
            if (f.line != row.line)
                continue;
            const int at = f.firstColumn - row.column + 1;
            QByteArray text = f.text.toLatin1();
            while (suite && text.endsWith(' '))
                text.chop(1);
            verbatim = verbatim && first.mid(at, text.size()) == text;
        }
        const QByteArray line = lines.value(row.line - 1);
        QByteArray sent = vmail ? first : first.mid(1).chopped(1);
        QByteArray holds = vmail ? line.mid(row.column - 2).split('~').first()
                                 : line.mid(row.column - 1, sent.size());
        if (suite) {
            while (sent.endsWith(' '))
                sent.chop(1);
            holds = line.mid(row.column - 1);
            while (holds.endsWith(' '))
                holds.chop(1);
        }
        const bool allOnItsLine =
            std::all_of(row.fields.cbegin(), row.fields.cend(), [&](const CheckedField& f) {
                return f.line == row.line && !f.text.contains(u'\r') && !f.text.contains(u'\n');
            });
        if (!row.warned)
            FUZZ_CHECK(run.refusals.isEmpty() && verbatim,
                       "a command called clean sends the fields the check read");
        if (!row.asWritten && allOnItsLine)
            FUZZ_CHECK(!run.refusals.isEmpty() || !verbatim || sent != holds,
                       "a command warned about does not go out as written");
    }
}

bool isWrite(const QByteArray& w, bool vmail) {
    if (w.size() == 1)
        return w.at(0) == ctl::ENQ || w.at(0) == ctl::ACK || w.at(0) == ctl::NAK;
    if (!w.startsWith(char(ctl::STX)))
        return false;
    return vmail ? w.size() >= 3 && w.at(w.size() - 2) == ctl::ETX : w.endsWith(char(ctl::ETX));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ScriptFile file;
    Input in(data, size);
    const uint8_t play = in.byte();
    const uint8_t pbxSends = in.byte();
    const QByteArray bytes = in.rest();

    const ScriptText script = readScript(bytes);
    checkRead(script);

    VirtualEventPump pump{
        QDateTime(QDate(2026, 1, 5), pbxSends & 8 ? QTime(23, 59, 50) : QTime(10, 0))};
    CountingOperator op;
    FakeTransport tcp{pump, QStringLiteral("TCP fake")};
    FakeTransport serial{pump, QStringLiteral("serial fake")};
    Session session{pump, op, tcp, serial};
    ScriptEngine engine{session};
    tcp.connectToHost(QStringLiteral("127.0.0.1"), 15374);
    serial.openPort(QStringLiteral("/dev/ttyS0"));
    pump.processEvents();

    session.link().settings().useTcp = !(play & 64);
    FakeTransport& active = session.link().settings().useTcp ? tcp : serial;
    SimulatedPbx pbx{pump, active};
    if (script.pmsMode == PmsMode::Vmail)
        pbx.setMode(sim::Mode::Vmail);
    pbx.options.onEnq = answerOf(play >> 1);
    pbx.options.onFrame = answerOf(play >> 3);
    session.choose(Control::chk_error, play & 32);
    session.choose(Control::Continuous, play & 1);

    active.onWrite = [&](const QByteArray& w) {
        if (!w.startsWith(char(ctl::STX)) || (pbxSends & 3) == 0)
            return;
        const QByteArray room = w.chopped(1).right(5);
        static const QByteArray heads[] = {"", "STS", "MR 0001", "RQINZ     "};
        QByteArray message = heads[pbxSends & 3];
        if ((pbxSends & 3) == 1)
            message += QByteArray::number(w.size() % 10) + ' ' + room;
        else if ((pbxSends & 3) == 2)
            message += room;
        active.deliver('\x02' + message + '\x03', 1500);
    };

    // CANCEL after a number of commands or of virtual seconds, and again each second.
    int commands = 0;
    bool stopped = false;
    const bool closing = pbxSends & 4;
    const auto stop = [&] {
        stopped = true;
        engine.cmd_cancel();
        if (closing)
            pump.requestStop();
    };
    // What each command wrote and refused, as far as it got.
    QList<Played> played;
    qsizetype writtenBefore = 0;
    QObject::connect(&engine, &ScriptEngine::commandStarted, [&] {
        FUZZ_CHECK(++commands <= maxCommands + commandsAfterStop, "a stopped script ends");
        if (commands >= maxCommands)
            stop();
        played.append(Played{});
        writtenBefore = active.written.size();
    });
    QObject::connect(&engine, &ScriptEngine::commandFinished, [&] {
        for (const QByteArray& w : active.written.mid(writtenBefore))
            if (w.startsWith(char(ctl::STX)))
                played.last().frames << w;
    });
    QObject::connect(&session.events(), &SessionEvents::fieldRefused, [&](const QString& text) {
        FUZZ_CHECK(!played.isEmpty(), "fields are refused by commands only");
        played.last().refusals << text;
    });
    // CANCEL acts again after each command, as the headless player does on a signal; closing
    // the window asks once.
    QObject::connect(&engine, &ScriptEngine::commandFinished, [&] {
        if (stopped && !closing)
            stop();
    });
    int stopperRounds = 0;
    std::function<void()> stopper = [&] {
        stop();
        if (++stopperRounds * 1000 > stopRequestAfterMs)
            pump.requestStop();
        pump.schedule(1000, stopper);
    };
    pump.schedule(stopAfterMs, stopper);

    const ScriptEngine::RunOutcome outcome = engine.runScriptFile(file.write(bytes));

    trace(session.log().logText() + QStringLiteral("outcome %1 after %2 commands, %3 ms")
                                        .arg(int(outcome))
                                        .arg(commands)
                                        .arg(pump.elapsedMs()));
    FUZZ_CHECK(!engine.running() && !session.link().waitingForAck(), "nothing is left running");
    FUZZ_CHECK(isLogText(session.log().logText()), "the log holds only 32..122 and CR LF pairs");
    for (const FakeTransport* t : {&tcp, &serial})
        for (const QByteArray& w : t->written)
            FUZZ_CHECK(isWrite(w, script.pmsMode == PmsMode::Vmail),
                       "only control bytes and whole frames reach the PBX");
    // The check walks the same reading: a run it did not cut short plays what the check says.
    if (!session.state().continuous && !stopped) {
        const ScriptCheck check = checkScript(script, {.errorMode = session.state().errorMode});
        QList<CheckRow> rows = check.rows;
        rows.removeIf([](const CheckRow& row) { return !row.plays; });
        FUZZ_CHECK(rows.size() == commands, "the check lists every command the run plays");
        FUZZ_CHECK((check.verdict() == ScriptCheck::Verdict::Stops) ==
                       (outcome == ScriptEngine::RunOutcome::Unrecognized),
                   "the check tells when the run stops");
        const bool pbxTakesAll = answerOf(play >> 1) == sim::Answer::Ack &&
                                 answerOf(play >> 3) == sim::Answer::Ack && (pbxSends & 3) == 0;
        checkForesight(rows, played, bytes, script.pmsMode == PmsMode::Vmail, pbxTakesAll);
    }
    switch (outcome) {
    case ScriptEngine::RunOutcome::Completed:
        FUZZ_CHECK(!session.state().continuous, "a Continuous script never completes");
        FUZZ_CHECK(op.lastNotice.startsWith(session.errors().errorCount() < 1
                                                ? QStringLiteral("Script file completed")
                                                : QStringLiteral("Script file ended!")),
                   "completion is told");
        break;
    case ScriptEngine::RunOutcome::Cancelled:
        FUZZ_CHECK(stopped, "only CANCEL cancels");
        break;
    case ScriptEngine::RunOutcome::Unrecognized:
        FUZZ_CHECK(op.lastNotice.startsWith(u"Command: "), "the unknown command is told");
        break;
    default:
        FUZZ_CHECK(false, "the file is read and nothing else runs");
    }
    return 0;
}
