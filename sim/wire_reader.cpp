#include "sim/wire_reader.h"

#include "protocol/frame.h"

namespace larkspur::sim {

WireReader::WireReader(bool checkCharacter) : m_checkCharacter(checkCharacter) {}

QList<WireUnit> WireReader::feed(const QByteArray& bytes) {
    QList<WireUnit> units;
    for (const char byte : bytes) {
        switch (m_state) {
        case State::Between:
            if (byte == char(ctl::STX)) {
                m_text.clear();
                m_state = State::InFrame;
            } else if (byte == char(ctl::ENQ)) {
                units.append({WireUnit::Kind::Enq});
            } else if (byte == char(ctl::ACK)) {
                units.append({WireUnit::Kind::Ack});
            } else if (byte == char(ctl::NAK)) {
                units.append({WireUnit::Kind::Nak});
            }
            break;
        case State::InFrame:
            if (byte == char(ctl::STX)) {
                m_text.clear();
            } else if (byte != char(ctl::ETX)) {
                m_text.append(byte);
            } else if (m_checkCharacter) {
                m_state = State::AwaitingCheck;
            } else {
                units.append({WireUnit::Kind::Frame, m_text});
                m_state = State::Between;
            }
            break;
        case State::AwaitingCheck: {
            // Any byte is the check character here, even a control byte.
            const QString checked = QString::fromLatin1(m_text + char(ctl::ETX));
            units.append(
                {WireUnit::Kind::Frame, m_text, true, byte, char(CRC(checked).at(0).unicode())});
            m_state = State::Between;
            break;
        }
        }
    }
    return units;
}

} // namespace larkspur::sim
