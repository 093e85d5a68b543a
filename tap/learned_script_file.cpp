#include "tap/learned_script_file.h"

#include "core/termination_signals.h"
#include "protocol/frame.h"

namespace larkspur::tap {

LearnedScriptFile::LearnedScriptFile(const QString& path,
                                     std::function<void(const QString&)> complain)
    : m_file(path), m_complain(std::move(complain)) {}

QString LearnedScriptFile::open() {
    InterruptibleCalls interruptible; // a FIFO nobody reads must not hold the start
    // Unbuffered: each learned line reaches the file in the one write that also closes it.
    return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)
               ? QString()
               : m_file.errorString();
}

void LearnedScriptFile::write(const QString& line, const QString& closing) {
    if (m_failed)
        return;
    const QByteArray learned = (line + carriage_return()).toLatin1();
    const QByteArray bytes = learned + (closing + carriage_return()).toLatin1();
    const qint64 end = m_closingAt + bytes.size();
    // A pipe or a device takes nothing back: there each closing line stays, a comment.
    const bool inPlace = !m_file.isSequential();
    if ((inPlace && !m_file.seek(m_closingAt)) || m_file.write(bytes) != bytes.size() ||
        (inPlace && end < m_file.size() && !m_file.resize(end))) {
        fail();
        return;
    }
    m_closingAt += learned.size();
}

void LearnedScriptFile::fail() {
    m_failed = true;
    m_complain(QStringLiteral("cannot write the script %1: %2")
                   .arg(m_file.fileName(), m_file.errorString()));
}

QString closingLine(const QDateTime& since, const QDateTime& until, const TapOptions& o,
                    int commands) {
    const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    QString link;
    switch (o.links) {
    case TapOptions::Links::Tcp:
        link = QStringLiteral("the TCP link to the PBX at %1")
                   .arg(formatHostPort(o.pbx.host, QString::number(o.pbx.port)));
        break;
    case TapOptions::Links::Serial:
        link = QStringLiteral("the serial link to the PBX on %1 at %2").arg(o.pbxPort, o.line);
        break;
    case TapOptions::Links::Monitor: {
        QStringList ports;
        for (const QString& port : {o.pmsPort, o.pbxPort})
            if (!port.isEmpty())
                ports << port;
        link = QStringLiteral("the serial link heard on %1 at %2")
                   .arg(ports.join(QStringLiteral(" and ")), o.line);
        break;
    }
    }
    return QStringLiteral("; learned by larkspur-tap from %1 to %2 on %3: %4 %5")
        .arg(since.toString(format), until.toString(format), link)
        .arg(commands)
        .arg(commands == 1 ? QStringLiteral("command") : QStringLiteral("commands"));
}

} // namespace larkspur::tap
