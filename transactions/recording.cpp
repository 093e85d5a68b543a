#include "transactions/recording.h"

#include "protocol/frame.h"

namespace larkspur {

void Recording::start(const QString& header) {
    m_recording = true;
    m_scriptText = header;
}

void Recording::finish() {
    m_recording = false;
    m_scriptText.clear();
}

void Recording::record(const QString& line) {
    if (m_recording)
        m_scriptText += line + carriage_return();
}

} // namespace larkspur
