#include "script/headless_player.h"

#include "link/log_files.h"
#include "link/operator_interface.h"
#include "link/qt_event_pump.h"
#include "link/run_statistics.h"
#include "link/serial_transport.h"
#include "link/settings_store.h"
#include "link/tcp_transport.h"
#include "link/termination_signals.h"
#include "link/wire_trace.h"
#include "script/junit_report.h"
#include "script/player_options.h"
#include "script/script_engine.h"
#include "script/script_reader.h"
#include "transactions/session.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

#include <cstdio>

namespace larkspur {

namespace {
void printError(const QString& text) {
    std::fprintf(stderr, "larkspur-run: %s\n", qPrintable(text));
    std::fflush(stderr);
}

// Notices become one line on standard error; nobody is there to close a box.
class HeadlessOperator : public OperatorInterface {
public:
    void notify(const QString& text) override {
        QString line = text;
        line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        printError(line);
    }
    QString chooseFileToOpen(const QString&) override { return QString(); }
    QString chooseFileToSave(const QString&) override { return QString(); }
};

// The traffic log on standard output, each CR LF as LF.
class StdoutDisplay : public TrafficDisplay {
public:
    void insertAtEnd(const QString& text, bool) override {
        QByteArray bytes = text.toLatin1();
        bytes.replace("\r\n", "\n");
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        std::fflush(stdout);
    }
    void clear() override {}
};

void applyOptions(const PlayerOptions& o, Session& session, const ScriptText& script) {
    LinkSettings& s = session.link.settings;
    if (o.tcpHost) {
        s.useTcp = true;
        s.ipAddress = *o.tcpHost;
        s.telnetPort = *o.tcpPort;
    }
    if (o.serialPort) {
        s.useTcp = false;
        s.commPortNumber = *o.serialPort;
    }
    if (o.line) {
        const QStringList parts = o.line->split(QLatin1Char(','));
        s.speed = parts[0];
        s.parity = parts[1];
        s.dataBits = parts[2];
        s.stopBits = parts[3];
    }
    s.dtrEnabled = o.dtr;
    s.rtsEnabled = o.rts;
    s.nullDiscard = o.nullDiscard;
    session.link.pmsMode = o.mode.value_or(script.pmsMode);
    session.link.protocolType = o.protocol.value_or(script.protocolType);
    session.errorMode = o.errorMode;
}

bool writeText(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}
} // namespace

int runHeadless(const PlayerOptions& options) {
    // The script is read before anything is opened: a bad path costs no connection.
    QFile file(options.script);
    if (!file.open(QIODevice::ReadOnly)) {
        printError(QStringLiteral("cannot read %1: %2").arg(options.script, file.errorString()));
        return exitcode::badScript;
    }
    const ScriptText script = readScript(file.readAll());
    file.close();

    QtEventPump pump;
    HeadlessOperator op;
    TcpTransport tcp;
    SerialTransport serial;
    Session session(pump, op, tcp, serial);
    ScriptEngine engine(session);
    StdoutDisplay display;
    session.log.setDisplay(&display);

    QSettings store(QStringLiteral("Larkspur"), QStringLiteral("Larkspur"));
    loadLinkSettings(store, session.link);
    applyOptions(options, session, script);
    engine.Continuous = options.continuous;
    QObject::connect(&session.link, &Link::linkLost, [](const QString& reason) {
        printError(QStringLiteral("link lost: %1").arg(reason));
    });

    // Only the newest rows are kept in memory; the file gets every one as it happens.
    WireTrace trace(1000);
    traceLink(session.link, trace);
    QFile traceFile(options.trace);
    if (!options.trace.isEmpty()) {
        if (!traceFile.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            printError(QStringLiteral("cannot write the trace %1: %2")
                           .arg(options.trace, traceFile.errorString()));
            return exitcode::usage;
        }
        QObject::connect(&trace, &WireTrace::rowAdded, [&traceFile](const WireRow& row) {
            traceFile.write((WireTrace::format(row) + QLatin1Char('\n')).toLatin1());
            traceFile.flush();
        });
    }
    RunStatistics statistics;
    QObject::connect(&trace, &WireTrace::exchangeEnded,
                     [&statistics](const ExchangeEvent& e) { statistics.add(e); });
    QObject::connect(&session, &Session::expectationEnded,
                     [&statistics](const QString& item, bool succeeded, qint64 ms) {
                         statistics.addWait(item, succeeded, ms);
                     });

    // A first signal acts as CANCEL (and keeps acting after each wait clears it); a second one
    // ends every wait at once.
    int signals = 0;
    bool playing = false;
    QString error;
    if (!watchTerminationSignals(
            [&] {
                ++signals;
                session.stopScript = true;
                if (signals > 1 || !playing)
                    pump.requestStop();
            },
            &error))
        printError(error);

    const Link::ConnectResult connected = session.cmd_connect(options.connectTimeoutSeconds);
    if (signals > 0) {
        session.cmd_disconnect();
        return exitcode::interrupted;
    }
    if (connected != Link::ConnectResult::Connected) {
        if (connected == Link::ConnectResult::NotOpened && session.link.settings.useTcp)
            printError(QStringLiteral("no connection to %1:%2 within %3 s")
                           .arg(session.link.settings.ipAddress, session.link.settings.telnetPort)
                           .arg(options.connectTimeoutSeconds));
        session.cmd_disconnect();
        return exitcode::noLink;
    }

    JunitReport report;
    QElapsedTimer commandClock;
    qsizetype logAtStart = 0, reportAtStart = 0;
    qint16 errorsAtStart = 0;
    QString currentLine;
    QObject::connect(&engine, &ScriptEngine::commandStarted, [&](const QString& line) {
        currentLine = line;
        logAtStart = session.log.logText().size();
        reportAtStart = session.link.errorReport.size();
        errorsAtStart = session.link.errorCount;
        commandClock.start();
    });
    QObject::connect(&engine, &ScriptEngine::commandFinished, [&] {
        JunitReport::Case c;
        c.name = currentLine;
        c.seconds = double(commandClock.elapsed()) / 1000.0;
        c.output = session.log.logText().mid(logAtStart);
        c.output.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        c.failure = session.link.errorReport.mid(reportAtStart).trimmed();
        if (c.failure.isEmpty() && session.link.errorCount != errorsAtStart)
            c.failure = QStringLiteral("the transaction failed");
        report.add(c);
        if (signals > 0)
            session.stopScript = true;
    });

    playing = true;
    const ScriptEngine::RunOutcome outcome = engine.runScriptFile(options.script);
    playing = false;
    session.cmd_disconnect();
    trace.finish(pump.currentDateTime());

    if (!statistics.isEmpty())
        std::fprintf(stderr, "%s", qPrintable(statistics.table()));
    for (auto it = statistics.rows().cbegin(); it != statistics.rows().cend(); ++it) {
        const RunStatistics::Row& r = it.value();
        const QString type = it.key();
        report.addProperty(type + QStringLiteral(".sent"), QString::number(r.sent));
        report.addProperty(type + QStringLiteral(".acknowledged"), QString::number(r.acknowledged));
        report.addProperty(type + QStringLiteral(".refused"), QString::number(r.refused));
        report.addProperty(type + QStringLiteral(".timedOut"), QString::number(r.timedOut));
        if (!r.answerMs.isEmpty())
            report.addProperty(
                type + QStringLiteral(".answerMs"),
                QStringLiteral("%1/%2/%3").arg(r.minMs()).arg(r.medianMs()).arg(r.maxMs()));
    }

    if (!options.saveLog.isEmpty() && !saveLogFile(options.saveLog, session.log.viewerList()))
        printError(QStringLiteral("cannot write the log file %1").arg(options.saveLog));
    if (!options.errorReport.isEmpty() &&
        !writeText(options.errorReport, session.link.errorReport.toLatin1()))
        printError(QStringLiteral("cannot write the error report %1").arg(options.errorReport));
    if (!options.junit.isEmpty() &&
        !report.write(options.junit, QFileInfo(options.script).completeBaseName()))
        printError(QStringLiteral("cannot write the JUnit report %1").arg(options.junit));

    if (signals > 0)
        return exitcode::interrupted;
    switch (outcome) {
    case ScriptEngine::RunOutcome::Completed:
        return session.link.errorCount == 0 ? exitcode::ok : exitcode::transactionsFailed;
    case ScriptEngine::RunOutcome::Cancelled:
        return exitcode::interrupted;
    case ScriptEngine::RunOutcome::Unrecognized:
    case ScriptEngine::RunOutcome::NotRead:
        return exitcode::badScript;
    case ScriptEngine::RunOutcome::Busy:
        break;
    }
    return exitcode::badScript;
}

} // namespace larkspur
