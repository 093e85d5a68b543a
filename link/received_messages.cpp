#include "link/received_messages.h"

namespace larkspur {

void ReceivedMessages::add(const QString& lastControl) {
    m_lastControl = lastControl;
    m_ring[m_count % capacity] = lastControl;
    ++m_count;
}

std::optional<QString> ReceivedMessages::Reader::next() {
    if (m_next == m_messages.m_count)
        return std::nullopt;
    // A reader left behind by a flood resumes at the oldest message kept.
    if (m_messages.m_count - m_next > capacity)
        m_next = m_messages.m_count - capacity;
    return m_messages.m_ring[m_next++ % capacity];
}

} // namespace larkspur
