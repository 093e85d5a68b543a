#include "player/run_outputs.h"

#include "assembly/junit_recorder.h"
#include "player/player_options.h"
#include "player/standard_error.h"
#include "records/error_records.h"
#include "records/log_files.h"
#include "records/run_statistics.h"
#include "records/wire_trace.h"

#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace larkspur {

namespace {
const char* const saveLogWhat = "the log file";
const char* const errorReportWhat = "the error report";
const char* const traceWhat = "the trace";
const char* const junitWhat = "the JUnit report";
} // namespace

RunOutputs::RunOutputs(const PlayerOptions& options, JunitRecorder& junit)
    : m_options(options), m_recorder(junit) {
    connect(&junit, &JunitRecorder::caseClosed, this,
            [this](const JunitReport::Case& c) { m_junit.add(c); });
}

bool RunOutputs::open() {
    const struct {
        StreamedFile& file;
        const QString& path;
        const char* what;
    } files[] = {{m_saveLog, m_options.saveLog, saveLogWhat},
                 {m_errorReport, m_options.errorReport, errorReportWhat},
                 {m_trace, m_options.trace, traceWhat}};
    for (const auto& f : files) {
        if (!f.path.isEmpty() && !f.file.open(f.path)) {
            printNotice(QStringLiteral("cannot write %1 %2: %3")
                            .arg(QLatin1String(f.what), f.path, f.file.error()));
            return false;
        }
    }
    if (!m_options.junit.isEmpty() && !m_junit.open(QFileInfo(m_options.junit).absolutePath()) &&
        !m_junit.open(QString())) {
        printNotice(QStringLiteral("cannot keep the JUnit cases for %1: %2")
                        .arg(m_options.junit, m_junit.error()));
        return false;
    }
    return true;
}

void RunOutputs::follow(ErrorRecords& errors, WireTrace& trace) {
    if (m_errorReport.isOpen())
        connect(&errors, &ErrorRecords::errorRecorded, this, [this](const QString& record) {
            write(m_errorReport, record.toLatin1(), errorReportWhat);
        });
    if (m_trace.isOpen())
        connect(&trace, &WireTrace::rowAdded, this, [this](const WireRow& row) {
            write(m_trace, (WireTrace::format(row) + QLatin1Char('\n')).toLatin1(), traceWhat);
        });
}

void RunOutputs::insertAtEnd(const QString& text, bool) {
    QByteArray bytes = text.toLatin1();
    bytes.replace("\r\n", "\n");
    writeStdout(bytes);
    if (m_saveLog.isOpen())
        write(m_saveLog, logFileLine(text), saveLogWhat);
    m_recorder.addOutput(text);
}

void RunOutputs::writeStdout(const QByteArray& bytes) {
    if (m_stdout != Stdout::Open)
        return;
    errno = 0;
    if (std::fputs(progressLineClearing(stdout), stdout) >= 0 &&
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size()) &&
        std::fflush(stdout) == 0)
        return;
    const int error = errno;
    std::clearerr(stdout);
    if (error == EPIPE) {
        // Whoever read the traffic log has gone (| head): the run and its reports go on.
        m_stdout = Stdout::Gone;
        printNotice(QStringLiteral("standard output is closed: the traffic log is no longer "
                                   "written there; the run goes on"));
        return;
    }
    m_stdout = Stdout::Failed;
    fail(QStringLiteral("the traffic log"), QStringLiteral("on standard output"),
         QString::fromLocal8Bit(std::strerror(error ? error : EIO)));
}

void RunOutputs::write(StreamedFile& file, QByteArrayView bytes, const char* what) {
    if (!file.failed() && !file.write(bytes))
        fail(QLatin1String(what), file.path(), file.error());
}

void RunOutputs::close(StreamedFile& file, const char* what) {
    if (!file.failed() && !file.close())
        fail(QLatin1String(what), file.path(), file.error());
}

void RunOutputs::finish(const RunStatistics& statistics) {
    close(m_saveLog, saveLogWhat);
    close(m_errorReport, errorReportWhat);
    close(m_trace, traceWhat);
    if (m_options.junit.isEmpty())
        return;
    for (auto it = statistics.rows().cbegin(); it != statistics.rows().cend(); ++it) {
        const RunStatistics::Row& r = it.value();
        const QString& type = it.key();
        m_junit.addProperty(type + QStringLiteral(".sent"), QString::number(r.sent));
        m_junit.addProperty(type + QStringLiteral(".acknowledged"),
                            QString::number(r.acknowledged));
        m_junit.addProperty(type + QStringLiteral(".refused"), QString::number(r.refused));
        m_junit.addProperty(type + QStringLiteral(".timedOut"), QString::number(r.timedOut));
        if (r.answered > 0)
            m_junit.addProperty(
                type + QStringLiteral(".answerMs"),
                QStringLiteral("%1/%2/%3").arg(r.minMs()).arg(r.medianMs()).arg(r.maxMs()));
    }
    if (!m_junit.write(m_options.junit, QFileInfo(m_options.script).completeBaseName()))
        fail(QLatin1String(junitWhat), m_options.junit, m_junit.error());
}

void RunOutputs::fail(const QString& what, const QString& path, const QString& reason) {
    m_failed = true;
    printNotice(QStringLiteral("cannot write %1 %2: %3").arg(what, path, reason));
}

} // namespace larkspur
