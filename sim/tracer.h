#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class QIODevice;

namespace larkspur::sim {

// Writes the simulator's trace: "HH:MM:SS.mmm RX <readable>" for each read, "... TX ..." for
// each write, and "# <text>" status lines. Each line goes to every sink at once, because the
// sinks are pipes and files that someone is watching. A sink that can no longer be written (a
// reader that went away, a full disk) is dropped, and the others are told.
class Tracer {
public:
    // `sink` must outlive the tracer and should be unbuffered.
    void addSink(QIODevice* sink);

    void received(const QByteArray& bytes);
    void sent(const QByteArray& bytes);
    void status(const QString& text);

private:
    void traceBytes(const char* direction, const QByteArray& bytes);
    void writeLine(const QString& line);

    QList<QIODevice*> m_sinks;
};

} // namespace larkspur::sim
