#include "tap/tap_run.h"

#include "core/output_file.h"
#include "core/qt_event_pump.h"
#include "core/termination_signals.h"
#include "link/serial_line.h"
#include "records/run_statistics.h"
#include "report/exit_status_words.h"
#include "report/report_page.h"
#include "report/run_record.h"
#include "tap/learned_script_file.h"
#include "tap/script_learner.h"
#include "tap/serial_links.h"
#include "tap/tap_options.h"
#include "tap/tcp_relay.h"
#include "tap/trace_backlog.h"
#include "tap/trace_lines.h"
#include "tap/trace_outputs.h"
#include "tap/traffic_analysis.h"

#include <QEventLoop>

#include <cstdio>
#include <memory>

namespace larkspur::tap {

namespace {

void printError(const QString& text) {
    std::fprintf(stderr, "larkspur-tap: %s\n", qPrintable(text));
    std::fflush(stderr);
}

std::unique_ptr<TapLinks> linksFor(const TapOptions& o, EventPump& pump) {
    if (o.links == TapOptions::Links::Tcp)
        return std::make_unique<TcpRelay>(pump, o.listen, o.pbx, o.connectTimeoutSeconds);
    return std::make_unique<SerialLinks>(pump, o.pmsPort, o.pbxPort, o.line,
                                         o.links == TapOptions::Links::Monitor);
}

// Refuses, before anything is opened, an output that cannot be written.
QString outputProblem(const TapOptions& o) {
    for (const auto& [option, path] :
         {std::pair{"--trace", o.trace}, {"--learn", o.learn}, {"--report", o.report}}) {
        if (path.isEmpty())
            continue;
        const QString why = unwritableReason(path);
        if (!why.isEmpty())
            return QStringLiteral("cannot write %1 %2: %3").arg(option, path, why);
    }
    return QString();
}

// The trace's last lines: the statistics, what could not be traced, what was learned.
void closeTheTrace(TraceOutputs& trace, const QDateTime& now, const RunStatistics& statistics,
                   const TraceBacklog& backlog, const ScriptLearner* learner,
                   const QString& learnedScript) {
    if (statistics.isEmpty()) {
        trace.line(noteLine(now, QStringLiteral("statistics: nothing was exchanged")));
    } else {
        trace.line(noteLine(now, QStringLiteral("statistics:")));
        for (const QString& row : statistics.table().split(u'\n', Qt::SkipEmptyParts))
            trace.line(row);
    }
    const qint64 untraced[] = {backlog.untraced(Side::Pms), backlog.untraced(Side::Pbx)};
    if (untraced[0] + untraced[1] > 0)
        trace.line(noteLine(now, QStringLiteral("not traced: %1 bytes PMS>PBX and %2 bytes "
                                                "PBX>PMS, relayed while the trace fell behind")
                                     .arg(untraced[0])
                                     .arg(untraced[1])));
    if (learner)
        trace.line(noteLine(now, QStringLiteral("learned %1 lines into %2; %3 acknowledged "
                                                "messages have no script line")
                                     .arg(learner->learned())
                                     .arg(learnedScript)
                                     .arg(learner->passedOver())));
}

QString portName(const QString& port) {
    return port.isEmpty() ? QStringLiteral("nothing") : port;
}

// What the report's header says of the session.
ReportHeading reportHeading(const TapOptions& o, const QDateTime& started, const QDateTime& ended,
                            int status) {
    const auto hostPort = [](const HostPort& at) {
        return formatHostPort(at.host, QString::number(at.port));
    };
    QString tapped;
    switch (o.links) {
    case TapOptions::Links::Tcp:
        tapped = QStringLiteral("TCP relay: the PMS comes to %1, the PBX is at %2")
                     .arg(hostPort(o.listen), hostPort(o.pbx));
        break;
    case TapOptions::Links::Serial:
        tapped =
            QStringLiteral("serial relay: the PMS on %1, the PBX on %2").arg(o.pmsPort, o.pbxPort);
        break;
    case TapOptions::Links::Monitor:
        tapped = QStringLiteral("passive monitor: the PMS heard on %1, the PBX on %2")
                     .arg(portName(o.pmsPort), portName(o.pbxPort));
        break;
    }
    const QString stamp = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    ReportHeading heading{QStringLiteral("larkspur-tap: the tapped link"),
                          {{QStringLiteral("Tapped"), tapped}}};
    if (o.links != TapOptions::Links::Tcp)
        heading.facts.append({QStringLiteral("Line"), o.line});
    heading.facts.append({{QStringLiteral("Mode"), pmsModeName(o.mode)},
                          {QStringLiteral("Started"), started.toString(stamp)},
                          {QStringLiteral("Ended"), ended.toString(stamp)},
                          {QStringLiteral("Exit status"), exitStatusWords(status)}});
    return heading;
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
    if (!watchTerminationSignals(
            [&](Termination t) {
                end(t == Termination::HangUp ? exitcode::hungUp : exitcode::interrupted);
            },
            &error))
        printError(error);

    TraceOutputs trace(printError);
    if (!o.trace.isEmpty()) {
        if (const QString why = trace.openFile(o.trace); !why.isEmpty()) {
            if (terminationRequested())
                return exitcode::interrupted;
            printError(QStringLiteral("cannot write the trace %1: %2").arg(o.trace, why));
            return exitcode::usage;
        }
    }
    QtEventPump pump;
    std::unique_ptr<LearnedScriptFile> learnFile;
    std::unique_ptr<ScriptLearner> learner;
    if (!o.learn.isEmpty()) {
        learnFile = std::make_unique<LearnedScriptFile>(o.learn, printError);
        if (const QString why = learnFile->open(); !why.isEmpty()) {
            if (terminationRequested())
                return exitcode::interrupted;
            printError(QStringLiteral("cannot write the script %1: %2").arg(o.learn, why));
            return exitcode::usage;
        }
        learner = std::make_unique<ScriptLearner>(
            o.mode, o.protocol, o.learnWaits,
            [&o, &pump, file = learnFile.get(), since = pump.currentDateTime()](const QString& line,
                                                                                int learned) {
                file->write(line, closingLine(since, pump.currentDateTime(), o, learned));
            });
    }

    RunStatistics statistics;
    const TrafficAnalysis::Setup setup{
        .mode = o.mode,
        .frameGapMs = frameGapMs(o.frameGapMs, o.links == TapOptions::Links::Tcp, o.line),
        .monitor = o.links == TapOptions::Links::Monitor,
        .splitJoined = o.splitJoined};
    TrafficAnalysis analysis(
        pump, setup, [&trace](const QString& line) { trace.line(line); }, statistics,
        learner.get());
    RunRecord record;
    const QDateTime started = pump.currentDateTime();
    QObject::connect(&analysis, &TrafficAnalysis::exchangeEnded,
                     [&record](const Exchange& exchange) { record.exchange(exchange); });
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
    closeTheTrace(trace, pump.currentDateTime(), statistics, backlog, learner.get(), o.learn);
    const bool traceWhole = trace.finish();
    const int ended =
        traceWhole && !(learnFile && learnFile->failed()) ? status : exitcode::reportsUnwritten;
    if (o.report.isEmpty())
        return ended;
    if (!writeReportPage(o.report, reportHeading(o, started, pump.currentDateTime(), ended), record,
                         statistics, &error)) {
        printError(QStringLiteral("cannot write the report %1: %2").arg(o.report, error));
        return exitcode::reportsUnwritten;
    }
    return ended;
}

} // namespace larkspur::tap
