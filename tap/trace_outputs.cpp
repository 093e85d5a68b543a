#include "tap/trace_outputs.h"

#include "core/termination_signals.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace larkspur::tap {

namespace {
// How long the trace's readers get at the end to take what is still queued.
constexpr int lastLinesMs = 3000;
} // namespace

TraceOutputs::TraceOutputs(std::function<void(const QString&)> complain)
    : m_complain(std::move(complain)), m_out(STDOUT_FILENO) {}

QString TraceOutputs::openFile(const QString& path) {
    int fd = -1;
    {
        InterruptibleCalls interruptible; // a FIFO nobody reads must not hold the start
        fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                    0666);
    }
    if (fd < 0)
        return errno == EINTR ? QStringLiteral("interrupted")
                              : QString::fromLocal8Bit(std::strerror(errno));
    // The descriptor stays open to the end: a write left blocking must not land in a reused one.
    m_path = path;
    m_file = std::make_unique<LineSink>(fd);
    return QString();
}

void TraceOutputs::line(const QString& text) {
    m_out.post(text);
    if (m_file)
        m_file->post(text);
}

bool TraceOutputs::finish() {
    if (!m_out.finish(lastLinesMs) && m_out.unwritten() > 0)
        m_complain(QStringLiteral("%1 trace lines could not be written to standard output")
                       .arg(m_out.unwritten()));
    if (!m_file || m_file->finish(lastLinesMs))
        return true;
    m_complain(QStringLiteral("the trace %1 is not whole: %2 lines not written%3")
                   .arg(m_path)
                   .arg(m_file->unwritten())
                   .arg(m_file->error().isEmpty() ? QString()
                                                  : QStringLiteral(" (%1)").arg(m_file->error())));
    return false;
}

} // namespace larkspur::tap
