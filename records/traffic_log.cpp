#include "records/traffic_log.h"

#include "protocol/frame.h"

namespace larkspur {

namespace {
constexpr char16_t backspace = 8;

bool keptByFilter(char16_t c) {
    return (c >= 32 && c <= 122) || c == u'\r' || c == u'\n';
}
} // namespace

void TrafficLog::ShowDebug(QString& text) {
    // Backspaces: each erases the character before it; one with nothing before it erases the
    // last character already shown instead.
    bool replaceLastShown = false;
    QString erased;
    erased.reserve(text.size());
    for (QChar c : std::as_const(text)) {
        if (c.unicode() != backspace)
            erased.append(c);
        else if (!erased.isEmpty())
            erased.chop(1);
        else
            replaceLastShown = true;
    }

    // Only 32..122 and the line ends survive; every line feed is dropped and each carriage
    // return gets one back, so lines end in CR LF and a lone LF vanishes.
    QString cleaned;
    cleaned.reserve(erased.size() + 8);
    for (QChar c : std::as_const(erased)) {
        const char16_t u = c.unicode();
        if (!keptByFilter(u) || u == u'\n')
            continue;
        cleaned.append(c);
        if (u == u'\r')
            cleaned.append(QLatin1Char('\n'));
    }

    const bool replacing = replaceLastShown && m_logCaret > 0;
    if (m_display)
        m_display->insertAtEnd(cleaned, replacing);
    m_logCaret += cleaned.size() - (replacing ? 1 : 0);
    if (!m_keepHistory) {
        text = std::move(cleaned);
        return;
    }

    const qsizetype at = m_viewerList.appendLogged(cleaned);
    if (!m_logSpans.isEmpty() && m_logSpans.last().second == at)
        m_logSpans.last().second += cleaned.size();
    else
        m_logSpans.append({at, at + cleaned.size()});
    text = std::move(cleaned);
}

QString TrafficLog::logText() const {
    QString text;
    for (const auto& [begin, end] : m_logSpans)
        text += m_viewerList.arena(begin, end);
    return text;
}

void TrafficLog::logLine(const QString& line) {
    QString text = line + carriage_return();
    ShowDebug(text);
}

void TrafficLog::clearDisplay() {
    if (m_display)
        m_display->clear();
    m_logCaret = 0;
}

} // namespace larkspur
