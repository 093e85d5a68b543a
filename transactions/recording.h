#pragma once

#include <QObject>
#include <QString>

namespace larkspur {

// The script being recorded: every acknowledged transaction and every met wait appends its line.
class Recording : public QObject {
    Q_OBJECT
public:
    bool recording() const { return m_recording; }
    const QString& scriptText() const { return m_scriptText; }
    // The lines recorded since the start (the voice-mail protocol line is not one).
    int lines() const { return m_lines; }

    // Starts afresh with `header` (the voice-mail protocol line, or nothing).
    void start(const QString& header);
    // Stops appending; what was recorded stays until the next start.
    void suspend();
    // Stops and forgets what was recorded (it has been saved).
    void finish();
    // Appends one line (CR LF added) while recording.
    void record(const QString& line);

Q_SIGNALS:
    // Recording started or stopped, or a line was recorded.
    void changed();

private:
    bool m_recording = false;
    QString m_scriptText;
    int m_lines = 0;
};

} // namespace larkspur
