#include "protocol/wire_units.h"

#include "protocol/frame.h"

namespace larkspur {

QByteArray WireUnit::text() const {
    if (kind != Kind::Frame)
        return {};
    // STX first; ETX last, or before the check character.
    const qsizetype tail = check == Check::None ? 1 : 2;
    return bytes.mid(1, bytes.size() - 1 - tail);
}

WireUnit WireScanner::frameUnit(WireUnit::Kind kind) {
    WireUnit unit{kind, std::exchange(m_frame, QByteArray()), WireUnit::Check::None};
    if (kind == WireUnit::Kind::Frame && m_frameChecked)
        unit.check =
            checkCharacterRight(unit.bytes) ? WireUnit::Check::Right : WireUnit::Check::Wrong;
    m_awaitingCheck = false;
    return unit;
}

QList<WireUnit> WireScanner::feed(QByteArrayView bytes) {
    QList<WireUnit> units;
    qsizetype strayFrom = -1;
    const auto endStray = [&](qsizetype at) {
        if (strayFrom >= 0)
            units.append(
                {WireUnit::Kind::Stray, bytes.sliced(strayFrom, at - strayFrom).toByteArray()});
        strayFrom = -1;
    };
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char byte = bytes[i];
        if (m_awaitingCheck) {
            // Any byte is the check character here, even a control byte.
            m_frame += byte;
            units.append(frameUnit(WireUnit::Kind::Frame));
            continue;
        }
        if (byte == char(ctl::STX)) {
            endStray(i);
            if (holding())
                units.append(frameUnit(WireUnit::Kind::UnfinishedFrame));
            m_frame = QByteArray(1, byte);
            m_frameChecked = m_checkCharacter;
            continue;
        }
        if (holding()) {
            // The body up to the next STX or ETX goes in at once: most frames come in one read.
            qsizetype end = i;
            while (end + 1 < bytes.size() && bytes[end + 1] != char(ctl::STX) &&
                   bytes[end + 1] != char(ctl::ETX) && byte != char(ctl::ETX) &&
                   m_frame.size() + (end + 1 - i) < maxFrameBytes)
                ++end;
            m_frame += bytes.sliced(i, end - i + 1);
            i = end;
            if (byte != char(ctl::ETX)) {
                if (m_frame.size() > maxFrameBytes)
                    units.append(frameUnit(WireUnit::Kind::UnfinishedFrame));
            } else if (m_frameChecked) {
                m_awaitingCheck = true;
            } else {
                units.append(frameUnit(WireUnit::Kind::Frame));
            }
            continue;
        }
        const auto control = byte == char(ctl::ENQ)   ? WireUnit::Kind::Enq
                             : byte == char(ctl::ACK) ? WireUnit::Kind::Ack
                             : byte == char(ctl::NAK) ? WireUnit::Kind::Nak
                                                      : WireUnit::Kind::Stray;
        if (control == WireUnit::Kind::Stray) {
            if (strayFrom < 0)
                strayFrom = i;
            continue;
        }
        endStray(i);
        units.append({control, QByteArray(1, byte)});
    }
    endStray(bytes.size());
    return units;
}

std::optional<WireUnit> WireScanner::flush() {
    if (!holding())
        return std::nullopt;
    return frameUnit(WireUnit::Kind::UnfinishedFrame);
}

} // namespace larkspur
