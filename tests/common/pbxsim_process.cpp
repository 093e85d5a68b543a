#include "common/pbxsim_process.h"

#include <QRegularExpression>

#include <csignal>

namespace larkspur::test {

void PbxSimOutput::feed(const QByteArray& bytes) {
    static const QRegularExpression traced(
        QStringLiteral(R"(^\d\d:\d\d:\d\d\.\d\d\d ((RX|TX) .*)$)"));
    m_partial += bytes;
    qsizetype end;
    while ((end = m_partial.indexOf('\n')) >= 0) {
        const QString line = QString::fromUtf8(m_partial.left(end));
        m_partial.remove(0, end + 1);
        const QRegularExpressionMatch match = traced.match(line);
        if (match.hasMatch())
            m_trace.append(match.captured(1));
        else if (line.startsWith(u"# "))
            m_status.append(line);
        else
            m_stray.append(line);
    }
}

PbxSimProcess::PbxSimProcess(const QStringList& extraArguments)
    : m_arguments(QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")} +
                  extraArguments) {
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { m_output.feed(m_process.readAllStandardOutput()); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { m_stderr += m_process.readAllStandardError(); });
}

QString PbxSimProcess::program() {
    return QStringLiteral(LARKSPUR_PBXSIM_PATH);
}

bool PbxSimProcess::start(int timeoutMs) {
    const bool wantPty = m_arguments.contains(QStringLiteral("--pty"));
    m_process.start(program(), m_arguments);
    const auto ready = [&] {
        for (const QString& line : statusLines()) {
            if (line.startsWith(u"# listening "))
                m_port = quint16(line.section(u':', -1).toUInt());
            else if (line.startsWith(u"# pty "))
                m_ptyPath = line.mid(6);
        }
        return m_port != 0 && (!wantPty || !m_ptyPath.isEmpty());
    };
    return waitUntil([&] { return ready() || m_process.state() == QProcess::NotRunning; },
                     timeoutMs) &&
           ready();
}

bool PbxSimProcess::waitForTraceLines(qsizetype count, int timeoutMs) {
    return waitUntil([&] { return traceLines().size() >= count; }, timeoutMs);
}

void PbxSimProcess::writeLine(const QString& line) {
    m_process.write((line + u'\n').toUtf8());
}

int PbxSimProcess::stop(int timeoutMs) {
    const int status = m_process.stop(SIGTERM, timeoutMs);
    m_output.feed(m_process.readAllStandardOutput());
    m_stderr += m_process.readAllStandardError();
    return status;
}

QString PbxSimProcess::diagnostics() const {
    return QStringLiteral("larkspur-pbxsim %1\n%2\nstandard error: %3")
        .arg(m_arguments.join(u' '), statusLines().join(u'\n'), standardError());
}

} // namespace larkspur::test
