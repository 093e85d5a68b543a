#include "protocol/frame_scanner.h"

#include "protocol/frame.h"

namespace larkspur {

FrameScanner::Role FrameScanner::feed(char byte) {
    const bool stx = byte == char(ctl::STX);
    const bool etx = byte == char(ctl::ETX);
    switch (m_state) {
    case State::Between:
        if (!stx)
            return Role::Outside;
        m_state = State::InFrame;
        return Role::Start;
    case State::InFrame:
        if (stx)
            return Role::Start;
        if (!etx)
            return Role::Text;
        if (m_checkCharacter) {
            m_state = State::AwaitingCheck;
            return Role::Etx;
        }
        m_state = State::Between;
        return Role::End;
    case State::AwaitingCheck:
        // Any byte is the check character here, even a control byte.
        m_state = State::Between;
        return Role::End;
    }
    return Role::Outside;
}

} // namespace larkspur
