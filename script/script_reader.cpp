#include "script/script_reader.h"

#include "protocol/frame.h"

#include <QByteArrayView>

#include <algorithm>
#include <optional>

namespace larkspur {

namespace {
// The lines of the file one by one, without their ends, without copying them.
class Lines {
public:
    explicit Lines(const QByteArray& file) : m_file(file) {}

    bool atEnd() const { return m_next >= m_file.size(); }
    QByteArrayView next() {
        const qsizetype begin = m_next;
        qsizetype end = begin;
        while (end < m_file.size() && m_file.at(end) != '\r' && m_file.at(end) != '\n')
            ++end;
        m_next = end;
        if (m_next < m_file.size())
            m_next += m_file.at(m_next) == '\r' && m_next + 1 < m_file.size() &&
                              m_file.at(m_next + 1) == '\n'
                          ? 2
                          : 1;
        return QByteArrayView(m_file).sliced(begin, end - begin);
    }

private:
    const QByteArray& m_file;
    qsizetype m_next = 0;
};

bool onlyBlanks(QByteArrayView line) {
    return std::all_of(line.begin(), line.end(), [](char c) { return c == ' '; });
}

// Why `line` is left out of the text, or nothing when it is kept.
std::optional<ScriptText::LeftOut::Reason> leftOutBecause(QByteArrayView line) {
    using Reason = ScriptText::LeftOut::Reason;
    if (line.startsWith(';'))
        return Reason::Comment;
    if (onlyBlanks(line))
        return Reason::Blank;
    if (line.contains("VMAIL"))
        return Reason::HoldsVmail;
    return std::nullopt;
}
} // namespace

ScriptText readScript(const QByteArray& file) {
    ScriptText script;
    script.text.reserve(file.size() + 3);

    Lines lines(file);
    qsizetype keptCount = 0;
    for (int fileLine = 1; !lines.atEnd(); ++fileLine) {
        const QByteArrayView line = lines.next();
        if (fileLine == 1 && line.contains("VMAIL")) {
            script.pmsMode = PmsMode::Vmail;
            script.protocolType = line.contains("HYATT") ? Protocol::Hyatt : Protocol::His;
        }
        // The line read last is never kept.
        auto reason = leftOutBecause(line);
        if (!reason && lines.atEnd())
            reason = ScriptText::LeftOut::Reason::LastLine;
        if (reason) {
            const bool keepText = *reason == ScriptText::LeftOut::Reason::HoldsVmail ||
                                  *reason == ScriptText::LeftOut::Reason::LastLine;
            script.leftOut.append(
                {fileLine, *reason, keepText ? line.toByteArray() : QByteArray()});
            continue;
        }
        const bool follows = script.m_resumes.isEmpty()
                                 ? fileLine == keptCount + 1
                                 : fileLine - script.m_resumes.last().fileLine ==
                                       keptCount - script.m_resumes.last().keptIndex;
        if (!follows)
            script.m_resumes.append({keptCount, fileLine});
        script.text += line;
        script.text += "\r\n";
        ++keptCount;
    }
    script.text += char(ctl::ETX);
    return script;
}

int ScriptText::fileLineAt(qsizetype position) const {
    const qsizetype offset = qBound<qsizetype>(0, position - 1, text.size());
    if (offset < m_seenPosition) {
        m_seenPosition = 0;
        m_seenLines = 0;
    }
    m_seenLines += std::count(text.cbegin() + m_seenPosition, text.cbegin() + offset, '\n');
    m_seenPosition = offset;
    // Past the last line end there is only the ETX.
    if (offset >= text.size() - 1)
        return 0;
    const qsizetype keptIndex = m_seenLines;
    const auto after = std::upper_bound(
        m_resumes.cbegin(), m_resumes.cend(), keptIndex,
        [](qsizetype index, const Resume& resume) { return index < resume.keptIndex; });
    if (after == m_resumes.cbegin())
        return int(keptIndex + 1);
    const Resume& resume = *(after - 1);
    return int(resume.fileLine + (keptIndex - resume.keptIndex));
}

} // namespace larkspur
