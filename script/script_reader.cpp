#include "script/script_reader.h"

#include "protocol/frame.h"

#include <QByteArrayView>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>

namespace larkspur {

namespace {
// How a line of the file ends.
enum class LineEnd { None, CrLf, Cr, Lf };

// The lines of the file one by one, without their ends, without copying them.
class Lines {
public:
    explicit Lines(const QByteArray& file) : m_file(file) {}

    bool atEnd() const { return m_next >= m_file.size(); }
    QByteArrayView next(LineEnd& end) {
        const qsizetype begin = m_next;
        qsizetype stop = begin;
        while (stop < m_file.size() && m_file.at(stop) != '\r' && m_file.at(stop) != '\n')
            ++stop;
        m_next = stop;
        end = LineEnd::None;
        if (m_next < m_file.size()) {
            if (m_file.at(m_next) == '\n')
                end = LineEnd::Lf;
            else if (m_next + 1 < m_file.size() && m_file.at(m_next + 1) == '\n')
                end = LineEnd::CrLf;
            else
                end = LineEnd::Cr;
            m_next += end == LineEnd::CrLf ? 2 : 1;
        }
        return QByteArrayView(m_file).sliced(begin, stop - begin);
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

// UTF-16 by its mark, or by NUL bytes in every other place of the file's first bytes (ASCII
// text in UTF-16 has a NUL as one byte of every character).
void readEncoding(const QByteArray& file, ScriptText& script) {
    using Encoding = ScriptText::Encoding;
    if (file.startsWith("\xEF\xBB\xBF")) {
        script.encoding = Encoding::Utf8WithMark;
        return;
    }
    if (file.startsWith("\xFF\xFE") || file.startsWith("\xFE\xFF")) {
        script.encoding = file.at(0) == '\xFF' ? Encoding::Utf16LE : Encoding::Utf16BE;
        script.utf16Marked = true;
        return;
    }
    const qsizetype pairs = qMin<qsizetype>(file.size(), 512) / 2;
    if (pairs < 2)
        return;
    qsizetype nulFirst = 0, nulSecond = 0;
    for (qsizetype i = 0; i < pairs; ++i) {
        nulFirst += file.at(2 * i) == '\0';
        nulSecond += file.at(2 * i + 1) == '\0';
    }
    if (nulSecond * 2 >= pairs && nulFirst * 10 < pairs)
        script.encoding = Encoding::Utf16LE;
    else if (nulFirst * 2 >= pairs && nulSecond * 10 < pairs)
        script.encoding = Encoding::Utf16BE;
}

// Collects the odd lines as the file is read; the lone line ends only count when the file's own
// lines end in CR LF, which is known at its end.
class OddLines {
public:
    using Oddity = ScriptText::Oddity;

    explicit OddLines(ScriptText& script)
        : m_script(script), m_utf16(script.encoding == ScriptText::Encoding::Utf16LE ||
                                    script.encoding == ScriptText::Encoding::Utf16BE) {}

    void line(int fileLine, QByteArrayView line, LineEnd end) {
        // In UTF-16 every other byte is a NUL; the encoding is the finding.
        if (!m_utf16) {
            if (const void* nul = std::memchr(line.data(), 0, size_t(line.size()))) {
                const auto first = static_cast<const char*>(nul) - line.data();
                add(m_nuls, m_nulCount,
                    {Oddity::Kind::Nul, fileLine, int(first + 1), int(line.count('\0'))});
            }
        }
        if (end == LineEnd::CrLf)
            m_crLf = true;
        else if (end == LineEnd::Lf || end == LineEnd::Cr)
            add(m_lone, m_loneCount,
                {end == LineEnd::Lf ? Oddity::Kind::LoneLf : Oddity::Kind::LoneCr, fileLine,
                 int(line.size() + 1), 1});
    }

    // A file of LF (or CR) lines ends them all that way: then nothing is lone.
    void finish() {
        if (!m_crLf) {
            m_lone.clear();
            m_loneCount = 0;
        }
        QList<Oddity>& all = m_script.oddities;
        std::merge(m_nuls.cbegin(), m_nuls.cend(), m_lone.cbegin(), m_lone.cend(),
                   std::back_inserter(all),
                   [](const Oddity& a, const Oddity& b) { return a.fileLine < b.fileLine; });
        all.resize(qMin(all.size(), ScriptText::maxOddities));
        m_script.oddityCount = m_nulCount + m_loneCount;
    }

private:
    static void add(QList<Oddity>& list, qsizetype& count, const Oddity& oddity) {
        ++count;
        if (list.size() < ScriptText::maxOddities)
            list.append(oddity);
    }

    ScriptText& m_script;
    bool m_utf16;
    bool m_crLf = false;
    QList<Oddity> m_nuls, m_lone;
    qsizetype m_nulCount = 0, m_loneCount = 0;
};
} // namespace

ScriptText readScript(const QByteArray& file) {
    using Reason = ScriptText::LeftOut::Reason;
    ScriptText script;
    script.text.reserve(file.size() + 3);
    readEncoding(file, script);
    OddLines odd(script);

    Lines lines(file);
    qsizetype keptCount = 0;
    for (int fileLine = 1; !lines.atEnd(); ++fileLine) {
        LineEnd end = LineEnd::None;
        const QByteArrayView line = lines.next(end);
        odd.line(fileLine, line, end);
        if (fileLine == 1 && line.contains("VMAIL")) {
            script.pmsMode = PmsMode::Vmail;
            script.protocolType = line.contains("HYATT") ? Protocol::Hyatt : Protocol::His;
        }
        // The line read last is never kept.
        auto reason = leftOutBecause(line);
        if (!reason && lines.atEnd())
            reason = Reason::LastLine;
        if (reason) {
            ScriptText::LeftOut* last = script.leftOut.isEmpty() ? nullptr : &script.leftOut.last();
            const bool run = *reason == Reason::Comment || *reason == Reason::Blank;
            if (run && last && last->reason == *reason && last->lastLine == fileLine - 1) {
                last->lastLine = fileLine;
                continue;
            }
            ScriptText::LeftOut out{};
            out.fileLine = fileLine;
            out.lastLine = fileLine;
            out.reason = *reason;
            out.keptBefore = int(keptCount);
            script.leftOut.append(out);
            if (!run) {
                script.m_leftOutLines.append(
                    {fileLine, int(script.m_leftOutText.size()), int(line.size())});
                script.m_leftOutText += line;
            }
            continue;
        }
        script.text += line;
        script.text += "\r\n";
        ++keptCount;
    }
    odd.finish();
    script.text += char(ctl::ETX);
    return script;
}

int ScriptText::fileLineOfKept(qsizetype keptIndex) const {
    // Up to the last line left out before it, the file holds keptBefore kept lines and the rest
    // left out; from there on every line is kept.
    const auto after = std::upper_bound(
        leftOut.cbegin(), leftOut.cend(), keptIndex,
        [](qsizetype index, const LeftOut& out) { return index < out.keptBefore; });
    if (after == leftOut.cbegin())
        return int(keptIndex + 1);
    const LeftOut& out = *(after - 1);
    return int(keptIndex + 1 + (out.lastLine - out.keptBefore));
}

QByteArray ScriptText::leftOutLine(int fileLine) const {
    const auto found =
        std::lower_bound(m_leftOutLines.cbegin(), m_leftOutLines.cend(), fileLine,
                         [](const KeptLine& kept, int line) { return kept.fileLine < line; });
    if (found == m_leftOutLines.cend() || found->fileLine != fileLine)
        return QByteArray();
    return m_leftOutText.mid(found->start, found->size);
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
    return fileLineOfKept(m_seenLines);
}

} // namespace larkspur
