#include "tap_process.h"

#include "common/pbxsim_process.h"
#include "protocol/readable_notation.h"

#include <QFile>
#include <QRegularExpression>

namespace larkspur::test {

namespace {
// "2026-01-05 10:00:00.123 " leads every line that is not a row of the statistics.
constexpr qsizetype stampLength = 24;
} // namespace

TapProcess::TapProcess(const QStringList& arguments) : m_arguments(arguments) {
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { m_stdout += m_process.readAllStandardOutput(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { m_stderr += m_process.readAllStandardError(); });
}

QString TapProcess::program() {
    return QStringLiteral(LARKSPUR_TAP_PATH);
}

void TapProcess::sendOutputTo(const QString& path) {
    m_process.setStandardOutputFile(path);
    m_traceFile = m_arguments.value(m_arguments.indexOf(QStringLiteral("--trace")) + 1);
}

bool TapProcess::start(int timeoutMs) {
    m_process.start(program(), m_arguments);
    if (!m_process.waitForStarted(timeoutMs))
        return false;
    if (m_arguments.contains(QStringLiteral("--help")))
        return true;
    return waitUntil(
               [&] { return !lines().isEmpty() || m_process.state() == QProcess::NotRunning; },
               timeoutMs) &&
           !lines().isEmpty();
}

quint16 TapProcess::port() const {
    static const QRegularExpression listening(
        QStringLiteral("listening for the PMS on .*:(\\d+);"));
    for (const QString& line : lines()) {
        const QRegularExpressionMatch match = listening.match(line);
        if (match.hasMatch())
            return quint16(match.captured(1).toUInt());
    }
    return 0;
}

QStringList TapProcess::lines() const {
    QByteArray trace = m_stdout;
    if (!m_traceFile.isEmpty()) {
        QFile file(m_traceFile);
        trace = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList result;
    for (const QString& line : QString::fromUtf8(trace).split(u'\n', Qt::SkipEmptyParts))
        result << (line.size() > stampLength && line.at(4) == u'-' && line.at(13) == u':'
                       ? line.mid(stampLength)
                       : line);
    return result;
}

bool TapProcess::waitForLine(const QString& text, int timeoutMs) {
    return waitUntil(
        [&] {
            for (const QString& line : lines())
                if (line.contains(text))
                    return true;
            return false;
        },
        timeoutMs);
}

int TapProcess::collected(int status) {
    m_stdout += m_process.readAllStandardOutput();
    m_stderr += m_process.readAllStandardError();
    return status;
}

int TapProcess::stop(int signal, int timeoutMs) {
    return collected(m_process.stop(signal, timeoutMs));
}

int TapProcess::waitForExit(int timeoutMs) {
    return collected(m_process.waitForExit(timeoutMs));
}

std::string TapProcess::diagnostics() const {
    return QStringLiteral("larkspur-tap %1\nstandard output:\n%2\nstandard error:\n%3")
        .arg(m_arguments.join(u' '), QString::fromUtf8(m_stdout), standardError())
        .toStdString();
}

QByteArray bytesOf(const QStringList& rows, const QString& direction) {
    static const QRegularExpression row(QStringLiteral("(?:^|^\\S+ )(TX|RX) (.*?)(?:   \\|.*)?$"));
    QByteArray bytes;
    for (const QString& line : rows) {
        const QRegularExpressionMatch match = row.match(line);
        if (match.hasMatch() && match.captured(1) == direction)
            bytes += parseReadable(match.captured(2), nullptr);
    }
    return bytes;
}

} // namespace larkspur::test
