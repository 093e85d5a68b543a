#pragma once

#include <QString>

#include <array>
#include <optional>

namespace larkspur {

// What the PBX sent, each message as the receiver names it for the waits: "ACK", "NAK", "ENQ",
// "RTI" or "rti", "Comm Event Fired ", or the text itself. Kept in arrival order, so that a wait
// sees every message that came while it waited, none overwritten by the next; the newest
// `capacity` are kept.
class ReceivedMessages {
public:
    static constexpr quint64 capacity = 256;

    // Reads the messages that arrive from its making on, in order.
    class Reader {
    public:
        explicit Reader(const ReceivedMessages& messages)
            : m_messages(messages), m_next(messages.m_count) {}
        // The next message, or nothing when none has come since the last one read.
        std::optional<QString> next();

    private:
        const ReceivedMessages& m_messages;
        quint64 m_next;
    };

    Reader reader() const { return Reader(*this); }
    // The name of the newest message, whoever has read it: `lastControl`, which a poll looks at.
    const QString& lastControl() const { return m_lastControl; }

    void add(const QString& lastControl);

private:
    std::array<QString, capacity> m_ring;
    quint64 m_count = 0;
    QString m_lastControl;
};

} // namespace larkspur
