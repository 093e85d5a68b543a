#include "player/progress_line.h"

#include "assembly/junit_recorder.h"
#include "core/event_pump.h"
#include "player/standard_error.h"
#include "records/wire_trace.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace larkspur {

namespace {
// Pump time between looks, and real time between redraws: a dry run's virtual seconds fly.
constexpr int tickMs = 250;
constexpr int redrawMs = 200;
const char* const clearToEnd = "\x1b[K";

int terminalColumns() {
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

QString clock(double seconds) {
    const qint64 s = qint64(seconds);
    return QStringLiteral("%1:%2:%3")
        .arg(s / 3600)
        .arg(s / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(s % 60, 2, 10, QLatin1Char('0'));
}
} // namespace

bool ProgressLine::wanted(std::optional<bool> forced) {
    return forced.value_or(::isatty(STDERR_FILENO) == 1);
}

ProgressLine::ProgressLine(Session& session, ScriptEngine& engine, WireTrace& trace,
                           const JunitRecorder& junit, qsizetype commands, bool rounds)
    : m_session(session), m_junit(junit), m_commands(commands), m_rounds(rounds),
      m_started(session.pump().monotonicSeconds()) {
    connect(&engine, &ScriptEngine::commandStarted, this, [this](const QString&, int fileLine) {
        // The script began again from its top.
        if (fileLine <= m_lastLine) {
            ++m_round;
            m_command = 0;
        }
        m_lastLine = fileLine;
        ++m_command;
    });
    SessionEvents& events = session.events();
    connect(&events, &SessionEvents::expectationStarted, this,
            [this](const QString& item, int seconds) {
                m_wait = Awaited{QStringLiteral("waiting for ") + item,
                                 seconds > 0 ? std::optional<double>(
                                                   m_session.pump().monotonicSeconds() + seconds)
                                             : std::nullopt};
            });
    connect(&events, &SessionEvents::expectationEnded, this, [this] { m_wait.reset(); });
    connect(&events, &SessionEvents::expectationStopped, this, [this] { m_wait.reset(); });
    connect(&trace, &WireTrace::exchangeOpened, this, [this](const Exchange& exchange) {
        if (exchange.from == Side::Pms)
            m_answer = Awaited{QStringLiteral("answer to ") + exchange.description,
                               exchange.seconds + ExchangePairing::answerMs / 1000.0};
    });
    connect(&trace, &WireTrace::exchangeEnded, this, [this](const Exchange& exchange) {
        if (exchange.from == Side::Pms)
            m_answer.reset();
    });
    noticesClearTheLine(true);
    m_session.pump().schedule(tickMs, this, [this] { tick(); });
}

ProgressLine::~ProgressLine() {
    noticesClearTheLine(false);
    if (m_drawn) {
        std::fprintf(stderr, "\r%s", clearToEnd);
        std::fflush(stderr);
    }
}

void ProgressLine::tick() {
    if (!m_drawn || m_sinceDrawn.elapsed() >= redrawMs) {
        // A line wider than the terminal would wrap, and the carriage return would redraw only
        // its last row.
        const QString line = text().left(terminalColumns() - 1);
        std::fprintf(stderr, "\r%s%s", qPrintable(line), clearToEnd);
        std::fflush(stderr);
        m_drawn = true;
        m_sinceDrawn.start();
    }
    m_session.pump().schedule(tickMs, this, [this] { tick(); });
}

QString ProgressLine::text() const {
    const double now = m_session.pump().monotonicSeconds();
    QString line = m_command == 0
                       ? QStringLiteral("connecting")
                       : QStringLiteral("command %1 of %2").arg(m_command).arg(m_commands);
    if (m_rounds)
        line += QStringLiteral(", round %1").arg(m_round);
    line +=
        QStringLiteral(", %1, %2 failed").arg(clock(now - m_started)).arg(m_junit.failedCases());
    const std::optional<Awaited>& awaited = m_answer ? m_answer : m_wait;
    if (awaited) {
        line += QStringLiteral(", ") + awaited->what;
        if (awaited->until)
            line += QStringLiteral(" (%1 s left)").arg(qMax(0.0, *awaited->until - now), 0, 'f', 1);
    }
    return line;
}

} // namespace larkspur
