#pragma once

#include <QString>

namespace larkspur {

// The script being recorded: every acknowledged transaction and every met wait appends its line.
class Recording {
public:
    bool recording() const { return m_recording; }
    const QString& scriptText() const { return m_scriptText; }

    // Starts afresh with `header` (the voice-mail protocol line, or nothing).
    void start(const QString& header);
    // Stops appending; what was recorded stays until the next start.
    void suspend() { m_recording = false; }
    // Stops and forgets what was recorded (it has been saved).
    void finish();
    // Appends one line (CR LF added) while recording.
    void record(const QString& line);

private:
    bool m_recording = false;
    QString m_scriptText;
};

} // namespace larkspur
