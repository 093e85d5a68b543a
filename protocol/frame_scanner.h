#pragma once

namespace larkspur {

// Follows a byte stream through the frames it carries, one byte at a time, whatever pieces the
// stream arrives in: STX opens a frame, ETX closes its text, and in voice-mail mode the byte
// after the ETX, the check character, ends it. An STX inside a frame starts the frame over, as
// a sender that gave up on a frame sends a new one.
class FrameScanner {
public:
    // What one byte is to the stream.
    enum class Role {
        Outside, // between frames: a bare control byte or stray text
        Start,   // the STX that opens (or starts over) a frame
        Text,    // a byte of the frame's text
        Etx,     // the ETX, with the check character still to come
        End,     // the byte that completes the frame: its ETX, or its check character
    };

    explicit FrameScanner(bool checkCharacter = false) : m_checkCharacter(checkCharacter) {}

    Role feed(char byte);

    // A frame has begun and has not ended yet.
    bool insideFrame() const { return m_state != State::Between; }
    // Voice-mail frames end one byte after their ETX; applies from the next frame on.
    void setCheckCharacter(bool checkCharacter) { m_checkCharacter = checkCharacter; }
    // Forgets a frame that never ended.
    void reset() { m_state = State::Between; }

private:
    enum class State { Between, InFrame, AwaitingCheck };

    bool m_checkCharacter;
    State m_state = State::Between;
};

} // namespace larkspur
