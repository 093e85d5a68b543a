#include "sim/wire_reader.h"

#include "protocol/frame.h"

namespace larkspur::sim {

WireReader::WireReader(bool checkCharacter)
    : m_checkCharacter(checkCharacter), m_scanner(checkCharacter) {}

QList<WireUnit> WireReader::feed(const QByteArray& bytes) {
    QList<WireUnit> units;
    for (const char byte : bytes) {
        switch (m_scanner.feed(byte)) {
        case FrameScanner::Role::Outside:
            if (byte == char(ctl::ENQ))
                units.append({WireUnit::Kind::Enq});
            else if (byte == char(ctl::ACK))
                units.append({WireUnit::Kind::Ack});
            else if (byte == char(ctl::NAK))
                units.append({WireUnit::Kind::Nak});
            break;
        case FrameScanner::Role::Start:
            m_text.clear();
            break;
        case FrameScanner::Role::Text:
            m_text.append(byte);
            break;
        case FrameScanner::Role::Etx:
            break;
        case FrameScanner::Role::End:
            if (!m_checkCharacter) {
                units.append({WireUnit::Kind::Frame, m_text});
                break;
            }
            const QString checked = QString::fromLatin1(m_text + char(ctl::ETX));
            units.append(
                {WireUnit::Kind::Frame, m_text, true, byte, char(CRC(checked).at(0).unicode())});
            break;
        }
    }
    return units;
}

} // namespace larkspur::sim
