#include "tap/learned_script_file.h"

#include "core/termination_signals.h"
#include "protocol/frame.h"

namespace larkspur::tap {

LearnedScriptFile::LearnedScriptFile(const QString& path,
                                     std::function<void(const QString&)> complain)
    : m_file(path), m_complain(std::move(complain)) {}

QString LearnedScriptFile::open() {
    InterruptibleCalls interruptible; // a FIFO nobody reads must not hold the start
    return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate) ? QString()
                                                                   : m_file.errorString();
}

void LearnedScriptFile::write(const QString& line) {
    if (m_failed)
        return;
    if (m_file.write((line + carriage_return()).toLatin1()) < 0 || !m_file.flush()) {
        m_failed = true;
        m_complain(QStringLiteral("cannot write the script %1: %2")
                       .arg(m_file.fileName(), m_file.errorString()));
    }
}

} // namespace larkspur::tap
