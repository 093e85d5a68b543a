#include "assembly/junit_report.h"

#include "core/output_file.h"
#include "protocol/readable_notation.h"

#include <QDir>
#include <QXmlStreamWriter>

namespace larkspur {

namespace {
// XML cannot carry control characters; voice-mail lines hold STX, ETX and the check character.
QString printable(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        if (c.unicode() < 32 && c != QLatin1Char('\n') && c != QLatin1Char('\t'))
            out += toReadable(QByteArray(1, char(c.unicode())));
        else
            out += c;
    }
    return out;
}

QString attribute(const QString& name, const QString& value) {
    return QStringLiteral(" %1=\"%2\"").arg(name, printable(value).toHtmlEscaped());
}
} // namespace

QString JunitReport::caseName(qsizetype number, const Case& c) {
    const QString head = QStringLiteral("%1 ").arg(number, 4, 10, QLatin1Char('0'));
    return c.line > 0 ? head + QStringLiteral("line %1: ").arg(c.line) + c.name : head + c.name;
}

bool JunitReport::open(const QString& folder) {
    m_spool = std::make_unique<QTemporaryFile>(
        QDir(folder.isEmpty() ? QDir::tempPath() : folder).filePath(".larkspur-junit-XXXXXX"));
    if (!m_spool->open()) {
        m_error = m_spool->errorString();
        m_spool.reset();
        return false;
    }
    return true;
}

void JunitReport::add(const Case& c) {
    ++m_tests;
    m_failures += c.failure.isEmpty() ? 0 : 1;
    m_seconds += c.seconds;
    if (!m_spool || !m_error.isEmpty())
        return;
    QXmlStreamWriter xml(m_spool.get());
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(4);
    xml.writeStartElement(QStringLiteral("testcase"));
    xml.writeAttribute(QStringLiteral("name"), printable(caseName(m_tests, c)));
    xml.writeAttribute(QStringLiteral("time"), QString::number(c.seconds, 'f', 3));
    const QString& output = c.output;
    if (!c.failure.isEmpty()) {
        xml.writeStartElement(QStringLiteral("failure"));
        xml.writeAttribute(QStringLiteral("message"), printable(c.failure).section(u'\n', 0, 0));
        xml.writeCharacters(printable(c.failure + QLatin1Char('\n') + output));
        xml.writeEndElement();
    }
    xml.writeTextElement(QStringLiteral("system-out"), printable(output));
    xml.writeEndElement();
    if (xml.hasError() || m_spool->error() != QFileDevice::NoError)
        m_error = m_spool->errorString();
}

bool JunitReport::write(const QString& path, const QString& suiteName) {
    if (!m_error.isEmpty())
        return false;
    QString head = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n");
    head += QStringLiteral("<testsuite") + attribute(QStringLiteral("name"), suiteName) +
            attribute(QStringLiteral("tests"), QString::number(m_tests)) +
            attribute(QStringLiteral("failures"), QString::number(m_failures)) +
            attribute(QStringLiteral("errors"), QStringLiteral("0")) +
            attribute(QStringLiteral("time"), QString::number(m_seconds, 'f', 3)) +
            QStringLiteral(">\n");
    if (!m_properties.isEmpty()) {
        head += QStringLiteral("    <properties>\n");
        for (const auto& [name, value] : std::as_const(m_properties))
            head += QStringLiteral("        <property") + attribute(QStringLiteral("name"), name) +
                    attribute(QStringLiteral("value"), value) + QStringLiteral("/>\n");
        head += QStringLiteral("    </properties>\n");
    }
    const QByteArray tail = QByteArrayLiteral("</testsuite>\n</testsuites>\n");
    return writeWholeFile(
        path,
        [&](QIODevice& file) {
            if (file.write(head.toUtf8()) < 0)
                return false;
            if (m_spool) {
                m_spool->flush();
                m_spool->seek(0);
                while (!m_spool->atEnd()) {
                    const QByteArray chunk = m_spool->read(64 * 1024);
                    if (chunk.isEmpty() || file.write(chunk) != chunk.size())
                        return false;
                }
            }
            return file.write(tail) == tail.size();
        },
        &m_error);
}

} // namespace larkspur
