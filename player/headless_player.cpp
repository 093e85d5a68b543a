#include "player/headless_player.h"

#include "assembly/assembly.h"
#include "assembly/dry_run.h"
#include "assembly/junit_recorder.h"
#include "assembly/link_name.h"
#include "assembly/report_recorder.h"
#include "core/host_port.h"
#include "core/operator_interface.h"
#include "core/output_file.h"
#include "core/termination_signals.h"
#include "link/settings_store.h"
#include "player/player_options.h"
#include "player/progress_line.h"
#include "player/run_outputs.h"
#include "player/standard_error.h"
#include "records/run_statistics.h"
#include "records/wire_trace.h"
#include "report/exit_status_words.h"
#include "script/script_engine.h"
#include "script/script_file.h"
#include "script/script_reader.h"
#include "script/script_steps.h"
#include "transactions/session.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <memory>
#include <optional>

#include <cstdio>
#include <functional>
#include <sys/stat.h>

namespace larkspur {

namespace {
// Notices become one line on standard error; nobody is there to close a box.
class HeadlessOperator : public OperatorInterface {
public:
    QString lastNotice;

    void notify(const QString& text) override {
        lastNotice = text;
        lastNotice.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        printNotice(lastNotice);
    }
    QString chooseFileToOpen(const QString&) override { return QString(); }
    QString chooseFileToSave(const QString&) override { return QString(); }
};

void applyOptions(const PlayerOptions& o, Session& session, const ScriptText& script) {
    LinkSettings& s = session.link().settings();
    if (o.tcpHost) {
        s.useTcp = true;
        s.ipAddress = *o.tcpHost;
        s.telnetPort = *o.tcpPort;
    }
    if (o.serialPort) {
        s.useTcp = false;
        s.commPortNumber = *o.serialPort;
    }
    if (!o.line.isEmpty()) {
        const QStringList parts = o.line.split(QLatin1Char(','));
        s.speed = parts[0];
        s.parity = parts[1];
        s.dataBits = parts[2];
        s.stopBits = parts[3];
    }
    if (o.frameGapMs > 0)
        s.frameGapMs = o.frameGapMs;
    if (o.splitJoined)
        s.splitJoinedMessages = true;
    s.dtrEnabled = o.dtr;
    s.rtsEnabled = o.rts;
    s.nullDiscard = o.nullDiscard;
    session.useScriptMode(o.mode.value_or(script.pmsMode),
                          o.protocol.value_or(script.protocolType));
    session.choose(Control::chk_error, o.errorMode);
}

bool sameFile(const QString& a, const QString& b) {
    struct stat sa {
    }, sb{};
    if (::stat(QFile::encodeName(a).constData(), &sa) == 0 &&
        ::stat(QFile::encodeName(b).constData(), &sb) == 0)
        return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
    return QFileInfo(a).absoluteFilePath() == QFileInfo(b).absoluteFilePath();
}

// The files the run will write, refused before anything is connected when one cannot be
// written, is the script itself or is named twice. Empty when all is well.
QString outputProblem(const PlayerOptions& o) {
    const std::pair<const char*, QString> outputs[] = {{"--save-log", o.saveLog},
                                                       {"--error-report", o.errorReport},
                                                       {"--junit", o.junit},
                                                       {"--trace", o.trace},
                                                       {"--report", o.report}};
    for (size_t i = 0; i < std::size(outputs); ++i) {
        const auto& [option, path] = outputs[i];
        if (path.isEmpty())
            continue;
        if (sameFile(path, o.script))
            return QStringLiteral("%1 %2 is the script itself").arg(option, path);
        for (size_t j = 0; j < i; ++j) {
            if (!outputs[j].second.isEmpty() && sameFile(path, outputs[j].second))
                return QStringLiteral("%1 and %2 name the same file %3")
                    .arg(outputs[j].first, option, path);
        }
        const QString why = unwritableReason(path);
        if (!why.isEmpty())
            return QStringLiteral("cannot write %1 %2: %3").arg(option, path, why);
    }
    return QString();
}

// One run of the player: read, connect, play, report.
class HeadlessRun {
public:
    // `beforeConnect` learns the mode the link is tested in, just before it is opened.
    HeadlessRun(const PlayerOptions& options, Assembly& console, EventPump& pump,
                HeadlessOperator& op, std::function<void(PmsMode)> beforeConnect = {})
        : m_options(options), m_operator(op), m_console(console), m_pump(pump),
          m_beforeConnect(std::move(beforeConnect)) {}

    int exec();

private:
    int play(const ScriptText& script);
    int connectionFailed(Link::ConnectResult connected);
    void onSignal(Termination termination);
    void onLinkLost(const QString& reason);
    // Ends the run: the trace's last exchange, the statistics, the files and reports.
    int finish(int status);
    int afterPlaying(ScriptEngine::RunOutcome outcome) const;

    const PlayerOptions& m_options;
    HeadlessOperator& m_operator;
    Assembly& m_console;
    EventPump& m_pump;
    std::function<void(PmsMode)> m_beforeConnect;
    Session& m_session = m_console.session;
    ScriptEngine& m_engine = m_console.engine;
    JunitRecorder m_junit{m_session, m_engine};
    RunOutputs m_outputs{m_options, m_junit};
    std::unique_ptr<ReportRecorder> m_report;
    std::unique_ptr<ProgressLine> m_progress;
    std::optional<Termination> m_termination;
    QString m_lostReason;
};

int HeadlessRun::exec() {
    // Before the script is opened: a FIFO blocks its open until someone writes it, and a signal
    // must still end the run.
    QString error;
    if (!watchTerminationSignals([this](Termination t) { onSignal(t); }, &error))
        printNotice(error);

    ScriptFile file;
    {
        InterruptibleCalls interruptible;
        file = readScriptFile(m_options.script);
    }
    if (file.status == ScriptFile::Status::Interrupted || terminationRequested())
        return m_termination == Termination::HangUp ? exitcode::hungUp : exitcode::interrupted;
    if (file.status == ScriptFile::Status::Refused) {
        printNotice(QStringLiteral("cannot read %1: %2").arg(m_options.script, file.error));
        return exitcode::badScript;
    }
    const ScriptText script = readScript(std::exchange(file.bytes, QByteArray()));

    const QString problem = outputProblem(m_options);
    if (!problem.isEmpty()) {
        printNotice(problem);
        return exitcode::usage;
    }
    if (!m_outputs.open())
        return exitcode::usage;
    return play(script);
}

int HeadlessRun::play(const ScriptText& script) {
    // Every line goes to its files as it comes; nothing is kept for a viewer nobody opens.
    m_session.log().setDisplay(&m_outputs);
    m_session.log().keepHistory(false);
    m_session.errors().keepReport(false);
    m_outputs.follow(m_session.errors(), m_console.trace);
    if (!m_options.report.isEmpty())
        m_report = std::make_unique<ReportRecorder>(m_session, m_engine, m_console.trace, m_junit,
                                                    m_options.script);

    if (!m_options.noSettings) {
        QSettings store(QStringLiteral("Larkspur"), QStringLiteral("Larkspur"));
        const QString settingsProblem = loadLinkSettings(store, m_session.link());
        if (!settingsProblem.isEmpty())
            printNotice(settingsProblem);
    }
    applyOptions(m_options, m_session, script);
    m_session.choose(Control::Continuous, m_options.continuous);
    QObject::connect(&m_session.link(), &Link::linkLost,
                     [this](const QString& reason) { onLinkLost(reason); });
    // A signal acts as CANCEL after every command, so nothing more is played.
    QObject::connect(&m_engine, &ScriptEngine::commandFinished, [this] {
        if (m_termination)
            m_engine.cmd_cancel();
    });
    QObject::connect(
        &m_engine, &ScriptEngine::unrecognizedCommand, [](int line, const QString& why) {
            printNotice(line > 0 ? QStringLiteral("line %1: %2").arg(line).arg(why) : why);
        });

    if (ProgressLine::wanted(m_options.progress))
        m_progress = std::make_unique<ProgressLine>(m_session, m_engine, m_console.trace, m_junit,
                                                    commandCount(script), m_options.continuous);
    if (m_beforeConnect)
        m_beforeConnect(m_session.link().pmsMode());
    const Link::ConnectResult connected = m_session.cmd_connect(m_options.connectTimeoutSeconds);
    if (m_termination || connected != Link::ConnectResult::Connected)
        return connectionFailed(connected);

    const ScriptEngine::RunOutcome outcome = m_engine.runScript(script, m_options.script);
    m_junit.finish();
    m_session.cmd_disconnect();
    return finish(afterPlaying(outcome));
}

int HeadlessRun::connectionFailed(Link::ConnectResult connected) {
    const LinkSettings& s = m_session.link().settings();
    QString why;
    int status = exitcode::noLink;
    if (m_termination) {
        why = QStringLiteral("interrupted");
        status = m_termination == Termination::HangUp ? exitcode::hungUp : exitcode::interrupted;
    } else if (connected == Link::ConnectResult::Lost) {
        why = QStringLiteral("link lost: ") + m_lostReason;
        status = exitcode::linkLost;
    } else if (connected == Link::ConnectResult::NoResponse) {
        why = QStringLiteral("No response from PBX");
    } else if (s.useTcp && m_operator.lastNotice.isEmpty()) {
        why = QStringLiteral("no connection to %1 within %2 s")
                  .arg(formatHostPort(s.ipAddress, s.telnetPort))
                  .arg(m_options.connectTimeoutSeconds);
        printNotice(why);
    } else {
        why = m_operator.lastNotice;
    }
    m_junit.connectionFailed(linkName(s), why);
    m_session.cmd_disconnect();
    return finish(status);
}

void HeadlessRun::onSignal(Termination termination) {
    // Acts as CANCEL, and ends whatever wait runs now (a transaction's too) at once.
    if (!m_termination)
        m_termination = termination;
    m_engine.cmd_cancel();
    m_pump.requestStop();
}

void HeadlessRun::onLinkLost(const QString& reason) {
    // Nothing more can reach the PBX: the run ends where it stands.
    m_lostReason = reason;
    printNotice(QStringLiteral("link lost: %1").arg(reason));
    m_pump.requestStop();
}

int HeadlessRun::finish(int status) {
    // The end-of-run text starts on a line of its own.
    m_progress.reset();
    m_console.trace.finish(QStringLiteral("the run ended"));
    if (!m_console.statistics.isEmpty())
        std::fprintf(stderr, "%s", qPrintable(m_console.statistics.table()));
    m_outputs.finish(m_console.statistics);
    // Reports cut short must never pass for a run's result.
    const int ended = m_outputs.failed() ? exitcode::reportsUnwritten : status;
    QList<std::pair<QString, QString>> facts = {
        {QStringLiteral("Exit status"), exitStatusWords(ended)}};
    if (m_options.dryRun)
        facts.prepend({QStringLiteral("Dry run"),
                       QStringLiteral("against the built-in simulator, in virtual time")});
    QString why;
    if (m_report && !m_report->write(m_options.report, QStringLiteral("larkspur-run"), facts,
                                     m_console.statistics, &why)) {
        printNotice(QStringLiteral("cannot write the report %1: %2").arg(m_options.report, why));
        return exitcode::reportsUnwritten;
    }
    return ended;
}

int HeadlessRun::afterPlaying(ScriptEngine::RunOutcome outcome) const {
    if (m_termination)
        return m_termination == Termination::HangUp ? exitcode::hungUp : exitcode::interrupted;
    if (!m_lostReason.isEmpty())
        return exitcode::linkLost;
    switch (outcome) {
    case ScriptEngine::RunOutcome::Completed:
        // The end notice counts failed transactions only; the status tells of every command
        // that failed, exactly as the JUnit report does.
        return m_junit.failedCases() == 0 ? exitcode::ok : exitcode::failed;
    case ScriptEngine::RunOutcome::Cancelled:
        return exitcode::interrupted;
    case ScriptEngine::RunOutcome::Unrecognized:
    case ScriptEngine::RunOutcome::NotRead:
    case ScriptEngine::RunOutcome::Busy:
        break;
    }
    return exitcode::badScript;
}
} // namespace

int runHeadless(const PlayerOptions& options) {
    HeadlessOperator op;
    // Nothing shows the trace's rows: the --trace file gets each one as it happens, and none
    // is kept, so a continuous run's memory is flat from its first round.
    constexpr qsizetype traceRows = 0;
    if (!options.dryRun) {
        ProgramAssembly console(op, traceRows);
        return HeadlessRun(options, console, console.pump(), op).exec();
    }
    printNotice(QStringLiteral("dry run: playing against the built-in simulator in virtual "
                               "time; no link is opened"));
    DryRunAssembly console(op, traceRows, options.pbx);
    // Unless told otherwise, the PBX speaks the mode the console tests the link in.
    const auto followMode = [&](PmsMode pmsMode) {
        if (!options.pbxModeGiven)
            console.setPbxMode(pmsMode);
    };
    return HeadlessRun(options, console, console.pump(), op, followMode).exec();
}

} // namespace larkspur
