#include "transactions/recording.h"

#include "protocol/frame.h"

namespace larkspur {

void Recording::start(const QString& header) {
    m_recording = true;
    m_scriptText = header;
    m_lines = 0;
    Q_EMIT changed();
}

void Recording::suspend() {
    if (!m_recording)
        return;
    m_recording = false;
    Q_EMIT changed();
}

void Recording::finish() {
    m_recording = false;
    m_scriptText.clear();
    m_lines = 0;
    Q_EMIT changed();
}

void Recording::record(const QString& line) {
    if (!m_recording)
        return;
    m_scriptText += line + carriage_return();
    ++m_lines;
    Q_EMIT changed();
}

} // namespace larkspur
