#include "player/junit_report.h"

#include "protocol/readable_notation.h"

#include "core/output_file.h"

#include <QXmlStreamWriter>

namespace larkspur {

namespace {
// XML cannot carry control characters; voice-mail lines hold STX, ETX and the check character.
QString printable(const QString& text) {
    QString out;
    for (QChar c : text) {
        if (c.unicode() < 32 && c != QLatin1Char('\n') && c != QLatin1Char('\t'))
            out += toReadable(QByteArray(1, char(c.unicode())));
        else
            out += c;
    }
    return out;
}
} // namespace

bool JunitReport::write(const QString& path, const QString& suiteName) const {
    return writeWholeFile(path, [&](QIODevice& file) { return writeXml(file, suiteName); });
}

bool JunitReport::writeXml(QIODevice& file, const QString& suiteName) const {
    int failures = 0;
    double total = 0;
    for (const Case& c : m_cases) {
        failures += c.failure.isEmpty() ? 0 : 1;
        total += c.seconds;
    }
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuites"));
    xml.writeStartElement(QStringLiteral("testsuite"));
    xml.writeAttribute(QStringLiteral("name"), suiteName);
    xml.writeAttribute(QStringLiteral("tests"), QString::number(m_cases.size()));
    xml.writeAttribute(QStringLiteral("failures"), QString::number(failures));
    xml.writeAttribute(QStringLiteral("errors"), QStringLiteral("0"));
    xml.writeAttribute(QStringLiteral("time"), QString::number(total, 'f', 3));
    if (!m_properties.isEmpty()) {
        xml.writeStartElement(QStringLiteral("properties"));
        for (const auto& [name, value] : m_properties) {
            xml.writeStartElement(QStringLiteral("property"));
            xml.writeAttribute(QStringLiteral("name"), printable(name));
            xml.writeAttribute(QStringLiteral("value"), printable(value));
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }
    int index = 0;
    for (const Case& c : m_cases) {
        xml.writeStartElement(QStringLiteral("testcase"));
        xml.writeAttribute(QStringLiteral("classname"), suiteName);
        xml.writeAttribute(
            QStringLiteral("name"),
            QStringLiteral("%1 %2").arg(++index, 4, 10, QLatin1Char('0')).arg(printable(c.name)));
        xml.writeAttribute(QStringLiteral("time"), QString::number(c.seconds, 'f', 3));
        if (c.line > 0)
            xml.writeAttribute(QStringLiteral("line"), QString::number(c.line));
        if (!c.failure.isEmpty()) {
            xml.writeStartElement(QStringLiteral("failure"));
            xml.writeAttribute(QStringLiteral("message"),
                               printable(c.failure).section(u'\n', 0, 0));
            xml.writeCharacters(printable(c.failure + QLatin1Char('\n') + c.output));
            xml.writeEndElement();
        }
        xml.writeTextElement(QStringLiteral("system-out"), printable(c.output));
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return !xml.hasError();
}

} // namespace larkspur
