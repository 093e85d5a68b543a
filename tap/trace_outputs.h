#pragma once

#include "tap/line_sink.h"

#include <QString>

#include <functional>
#include <memory>

namespace larkspur::tap {

// Where the trace goes: standard output, and the trace file when there is one, each written by
// a LineSink of its own so neither waits for the other.
class TraceOutputs {
public:
    // `complain` says on standard error what went wrong.
    explicit TraceOutputs(std::function<void(const QString&)> complain);

    // Opens `path` afresh; why it cannot be written otherwise ("interrupted" when a signal
    // ended a wait for a FIFO's reader).
    QString openFile(const QString& path);
    void line(const QString& text);
    // Gives the readers a moment for what is still queued and says what never reached them.
    // False when the trace file is not whole.
    bool finish();

private:
    std::function<void(const QString&)> m_complain;
    LineSink m_out;
    QString m_path;
    std::unique_ptr<LineSink> m_file;
};

} // namespace larkspur::tap
