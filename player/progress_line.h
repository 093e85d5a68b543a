#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <optional>

namespace larkspur {

class JunitRecorder;
class ScriptEngine;
class Session;
class WireTrace;

// Where a run stands, on one line of standard error redrawn in place a few times a second:
// "command 3 of 24, 0:01:12, 1 failed, waiting for sts2 (3.2 s left)". The pump's timers drive
// it, so it costs nothing between redraws.
class ProgressLine : public QObject {
    Q_OBJECT
public:
    // `commands`: how many a round plays; `rounds`: a continuous run counts its rounds.
    ProgressLine(Session& session, ScriptEngine& engine, WireTrace& trace,
                 const JunitRecorder& junit, qsizetype commands, bool rounds);
    // Clears the line, so what follows starts on a clean one.
    ~ProgressLine() override;

    // Whether a run shows it: `forced` by --progress or --no-progress, else when standard error
    // is a terminal.
    static bool wanted(std::optional<bool> forced);

private:
    // What the run waits for now, and until when on the pump's clock (none: no limit).
    struct Awaited {
        QString what;
        std::optional<double> until;
    };

    void tick();
    QString text() const;

    Session& m_session;
    const JunitRecorder& m_junit;
    qsizetype m_commands;
    bool m_rounds;
    double m_started;
    qsizetype m_command = 0;
    int m_round = 1;
    int m_lastLine = 0;
    std::optional<Awaited> m_wait;
    std::optional<Awaited> m_answer;
    QElapsedTimer m_sinceDrawn;
    bool m_drawn = false;
};

} // namespace larkspur
