#include "tap/tap_run.h"

#include "core/output_file.h"
#include "core/qt_event_pump.h"
#include "core/termination_signals.h"
#include "link/receive_assembly.h"
#include "link/serial_line.h"
#include "protocol/frame.h"
#include "records/run_statistics.h"
#include "tap/hangup_signal.h"
#include "tap/line_sink.h"
#include "tap/script_learner.h"
#include "tap/serial_links.h"
#include "tap/tap_options.h"
#include "tap/tcp_relay.h"
#include "tap/trace_backlog.h"
#include "tap/trace_lines.h"
#include "tap/traffic_analysis.h"

#include <QEventLoop>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace larkspur::tap {

namespace {

// How long the trace's readers get at the end to take what is still queued.
constexpr int lastLinesMs = 3000;

void printError(const QString& text) {
    std::fprintf(stderr, "larkspur-tap: %s\n", qPrintable(text));
    std::fflush(stderr);
}

int frameGapMs(const TapOptions& o) {
    if (o.frameGapMs)
        return *o.frameGapMs;
    if (o.links == TapOptions::Links::Tcp)
        return defaultFrameGapMs(0, 0);
    SerialLine line;
    QString ignored;
    parseSerialLine(o.line, line, ignored);
    return defaultFrameGapMs(line.baudRate, bitsPerCharacter(line));
}

// The script being learned, written line by line so that nothing learned is lost when the tap
// is stopped hard; a failed write is said once and stops the learning.
class LearnedScriptFile {
public:
    explicit LearnedScriptFile(const QString& path) : m_file(path) {}

    QString open() {
        InterruptibleCalls interruptible; // a FIFO nobody reads must not hold the start
        return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate) ? QString()
                                                                       : m_file.errorString();
    }
    void write(const QString& line) {
        if (m_failed)
            return;
        if (m_file.write((line + carriage_return()).toLatin1()) < 0 || !m_file.flush()) {
            m_failed = true;
            printError(QStringLiteral("cannot write the script %1: %2")
                           .arg(m_file.fileName(), m_file.errorString()));
        }
    }
    bool failed() const { return m_failed; }

private:
    QFile m_file;
    bool m_failed = false;
};

std::unique_ptr<TapLinks> linksFor(const TapOptions& o, EventPump& pump) {
    if (o.links == TapOptions::Links::Tcp)
        return std::make_unique<TcpRelay>(pump, o.listen, o.pbx, o.connectTimeoutSeconds);
    return std::make_unique<SerialLinks>(pump, o.pmsPort, o.pbxPort, o.line,
                                         o.links == TapOptions::Links::Monitor);
}

// Refuses, before anything is opened, an output that cannot be written.
QString outputProblem(const TapOptions& o) {
    for (const auto& [option, path] : {std::pair{"--trace", o.trace}, {"--learn", o.learn}}) {
        if (path.isEmpty())
            continue;
        const QString why = unwritableReason(path);
        if (!why.isEmpty())
            return QStringLiteral("cannot write %1 %2: %3").arg(option, path, why);
    }
    return QString();
}

} // namespace

int runTap(const TapOptions& o) {
    ignoreBrokenPipes();
    if (const QString problem = outputProblem(o); !problem.isEmpty()) {
        printError(problem);
        return exitcode::usage;
    }
    int status = -1;
    QEventLoop loop;
    std::unique_ptr<TapLinks> links;
    bool stopping = false;
    const auto end = [&](int exitStatus) {
        if (stopping)
            return;
        stopping = true;
        status = exitStatus;
        if (links)
            links->stop();
        loop.quit();
    };
    QString error;
    if (!watchTerminationSignals([&] { end(exitcode::interrupted); }, &error) ||
        !watchHangUpSignal([&] { end(exitcode::hungUp); }, &error))
        printError(error);

    LineSink out(STDOUT_FILENO);
    std::unique_ptr<LineSink> traceFile;
    int traceFd = -1;
    if (!o.trace.isEmpty()) {
        {
            InterruptibleCalls interruptible;
            traceFd = ::open(QFile::encodeName(o.trace).constData(),
                             O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        }
        if (traceFd < 0) {
            if (errno == EINTR)
                return exitcode::interrupted;
            printError(QStringLiteral("cannot write the trace %1: %2")
                           .arg(o.trace, QString::fromLocal8Bit(std::strerror(errno))));
            return exitcode::usage;
        }
        traceFile = std::make_unique<LineSink>(traceFd);
    }
    const auto traceLine = [&](const QString& line) {
        out.post(line);
        if (traceFile)
            traceFile->post(line);
    };

    std::unique_ptr<LearnedScriptFile> learnFile;
    std::unique_ptr<ScriptLearner> learner;
    if (!o.learn.isEmpty()) {
        learnFile = std::make_unique<LearnedScriptFile>(o.learn);
        if (const QString why = learnFile->open(); !why.isEmpty()) {
            if (terminationRequested())
                return exitcode::interrupted;
            printError(QStringLiteral("cannot write the script %1: %2").arg(o.learn, why));
            return exitcode::usage;
        }
        learner = std::make_unique<ScriptLearner>(
            o.mode, o.protocol, o.learnWaits,
            [file = learnFile.get()](const QString& line) { file->write(line); });
    }

    QtEventPump pump;
    RunStatistics statistics;
    TrafficAnalysis analysis(pump, o.mode, frameGapMs(o), traceLine, statistics, learner.get());
    TraceBacklog backlog(pump, [&analysis](const TraceEntry& entry) { analysis.take(entry); });
    links = linksFor(o, pump);
    QObject::connect(links.get(), &TapLinks::opened, &backlog, &TraceBacklog::opened);
    QObject::connect(links.get(), &TapLinks::passed, &backlog, &TraceBacklog::passed);
    QObject::connect(links.get(), &TapLinks::note, &backlog, &TraceBacklog::note);
    QObject::connect(links.get(), &TapLinks::closed, &backlog, [&](const QString& text) {
        backlog.closed(text);
        if (o.once)
            end(exitcode::ok);
        else if (!stopping)
            backlog.note(o.links == TapOptions::Links::Tcp
                             ? QStringLiteral("waiting for the next PMS")
                             : QStringLiteral("opening the ports again"));
    });

    if (!links->start(&error)) {
        printError(error);
        return exitcode::noLink;
    }
    if (!stopping)
        loop.exec();

    backlog.drain();
    analysis.finish(pump.currentDateTime(), pump.monotonicSeconds());
    const QDateTime now = pump.currentDateTime();
    if (statistics.isEmpty()) {
        traceLine(noteLine(now, QStringLiteral("statistics: nothing was exchanged")));
    } else {
        traceLine(noteLine(now, QStringLiteral("statistics:")));
        for (const QString& row : statistics.table().split(u'\n', Qt::SkipEmptyParts))
            traceLine(row);
    }
    const qint64 untraced[] = {backlog.untraced(Side::Pms), backlog.untraced(Side::Pbx)};
    if (untraced[0] + untraced[1] > 0)
        traceLine(noteLine(now, QStringLiteral("not traced: %1 bytes PMS>PBX and %2 bytes "
                                               "PBX>PMS, relayed while the trace fell behind")
                                    .arg(untraced[0])
                                    .arg(untraced[1])));
    if (learner)
        traceLine(noteLine(now, QStringLiteral("learned %1 lines into %2; %3 acknowledged "
                                               "messages have no script line")
                                    .arg(learner->learned())
                                    .arg(o.learn)
                                    .arg(learner->passedOver())));

    if (!out.finish(lastLinesMs) && out.unwritten() > 0)
        printError(QStringLiteral("%1 trace lines could not be written to standard output")
                       .arg(out.unwritten()));
    bool outputsWhole = !(learnFile && learnFile->failed());
    if (traceFile) {
        if (!traceFile->finish(lastLinesMs)) {
            outputsWhole = false;
            printError(QStringLiteral("the trace %1 is not whole: %2 lines not written%3")
                           .arg(o.trace)
                           .arg(traceFile->unwritten())
                           .arg(traceFile->error().isEmpty()
                                    ? QString()
                                    : QStringLiteral(" (%1)").arg(traceFile->error())));
        }
        // The descriptor stays open: a write left blocking must not land in a reused one.
    }
    return outputsWhole ? status : exitcode::outputFailed;
}

} // namespace larkspur::tap
