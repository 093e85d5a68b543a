#include "sim/tracer.h"

#include "protocol/readable_notation.h"

#include <QIODevice>
#include <QTime>

namespace larkspur::sim {

void Tracer::addSink(QIODevice* sink) {
    m_sinks.append(sink);
}

void Tracer::received(const QByteArray& bytes) {
    traceBytes("RX", bytes);
}

void Tracer::sent(const QByteArray& bytes) {
    traceBytes("TX", bytes);
}

void Tracer::status(const QString& text) {
    writeLine(QStringLiteral("# ") + text);
}

void Tracer::traceBytes(const char* direction, const QByteArray& bytes) {
    // The tests' simulated PBX traces nowhere; formatting each byte for nobody would be most of
    // its cost.
    if (m_sinks.isEmpty())
        return;
    writeLine(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")) + u' ' +
              QLatin1String(direction) + u' ' + toReadable(bytes));
}

void Tracer::writeLine(const QString& line) {
    const QByteArray text = (line + u'\n').toUtf8();
    QStringList dropped;
    for (qsizetype i = 0; i < m_sinks.size();) {
        QIODevice* sink = m_sinks.at(i);
        if (sink->write(text) == text.size()) {
            ++i;
            continue;
        }
        dropped << sink->errorString();
        m_sinks.removeAt(i);
    }
    for (const QString& why : std::as_const(dropped))
        status(QStringLiteral("trace output dropped: ") + why);
}

} // namespace larkspur::sim
