#include "script/reader_notes.h"

#include "script/check_quotes.h"

namespace larkspur {

using Level = CheckFinding::Level;

bool ReaderNotes::next(int line, CheckFinding& note) {
    if (!m_encodingTold) {
        m_encodingTold = true;
        if (encoding(note))
            return true;
    }
    const auto& leftOut = m_script.leftOut;
    const auto& odd = m_script.oddities;
    const bool outNext = m_out < leftOut.size() &&
                         (m_odd >= odd.size() || leftOut[m_out].fileLine <= odd[m_odd].fileLine);
    if (outNext && leftOut[m_out].fileLine <= line) {
        note = leftOutNote(leftOut[m_out], m_script.leftOutLine(leftOut[m_out].fileLine));
        ++m_out;
        return true;
    }
    if (!outNext && m_odd < odd.size() && odd[m_odd].fileLine <= line) {
        note = oddityNote(odd[m_odd++]);
        if (m_odd == odd.size() && m_script.oddityCount > odd.size())
            note.text += QStringLiteral("; %1 more lines hold NUL bytes or lone line ends, "
                                        "which the check does not list")
                             .arg(m_script.oddityCount - odd.size());
        return true;
    }
    return false;
}

bool ReaderNotes::encoding(CheckFinding& note) const {
    using Encoding = ScriptText::Encoding;
    switch (m_script.encoding) {
    case Encoding::Bytes:
        return false;
    case Encoding::Utf8WithMark:
        note = {Level::Warning,
                QStringLiteral("utf8-bom"),
                1,
                1,
                1,
                3,
                QStringLiteral("the file starts with a UTF-8 byte order mark "
                               "(\\xEF\\xBB\\xBF), which the runner reads as three characters "
                               "at the start of line 1; save the script without the mark "
                               "(as ASCII, or as UTF-8 without BOM)")};
        return true;
    case Encoding::Utf16LE:
    case Encoding::Utf16BE:
        break;
    }
    const bool little = m_script.encoding == Encoding::Utf16LE;
    const QString mark = m_script.utf16Marked ? QStringLiteral("with its byte order mark %1")
                                                    .arg(little ? QStringLiteral("\\xFF\\xFE")
                                                                : QStringLiteral("\\xFE\\xFF"))
                                              : QStringLiteral("without a byte order mark");
    note = {Level::Warning,
            QStringLiteral("utf16"),
            1,
            1,
            0,
            0,
            QStringLiteral("the file is UTF-16 (%1, %2): the runner reads one byte a "
                           "character, so every other character is a NUL byte and no line is "
                           "what it seems; save the script as ASCII (8-bit) text")
                .arg(little ? QStringLiteral("low byte first") : QStringLiteral("high byte first"),
                     mark)};
    return true;
}

CheckFinding ReaderNotes::leftOutNote(const ScriptText::LeftOut& out, const QByteArray& text) {
    using Reason = ScriptText::LeftOut::Reason;
    const QString line = QString::fromLatin1(text);
    switch (out.reason) {
    case Reason::Comment:
    case Reason::Blank: {
        const QString kind =
            out.reason == Reason::Comment ? QStringLiteral("comment") : QStringLiteral("blank");
        return {Level::Note,
                kind,
                out.fileLine,
                out.lastLine,
                0,
                0,
                kind + (out.lastLine > out.fileLine ? QStringLiteral(" lines, left out")
                                                    : QStringLiteral(" line, left out"))};
    }
    case Reason::HoldsVmail:
        if (out.fileLine == 1)
            return {Level::Note,
                    QStringLiteral("header"),
                    1,
                    1,
                    0,
                    0,
                    QStringLiteral("the header line, left out")};
        return {Level::Warning,
                QStringLiteral("vmail-line"),
                out.fileLine,
                out.fileLine,
                0,
                0,
                QStringLiteral("holds \"VMAIL\", so it is left out and never played: %1")
                    .arg(quotedShort(line))};
    case Reason::LastLine:
        break;
    }
    return {Level::Warning,
            QStringLiteral("last-line"),
            out.fileLine,
            out.fileLine,
            0,
            0,
            QStringLiteral("the file's last line is never played: %1; add a comment line "
                           "after it to have it played")
                .arg(quotedShort(line))};
}

CheckFinding ReaderNotes::oddityNote(const ScriptText::Oddity& odd) {
    using OddKind = ScriptText::Oddity::Kind;
    if (odd.kind == OddKind::Nul)
        return {Level::Warning,
                QStringLiteral("nul"),
                odd.fileLine,
                odd.fileLine,
                odd.column,
                odd.column,
                QStringLiteral("holds %1 (\\x00), %2column %3: an editor may show nothing "
                               "there, but the runner reads each as a character of the line "
                               "and sends it on; remove %4")
                    .arg(odd.count == 1 ? QStringLiteral("a NUL byte")
                                        : QStringLiteral("%1 NUL bytes").arg(odd.count),
                         odd.count == 1 ? QString() : QStringLiteral("the first in "))
                    .arg(odd.column)
                    .arg(odd.count == 1 ? QStringLiteral("it") : QStringLiteral("them"))};
    const bool lf = odd.kind == OddKind::LoneLf;
    return {Level::Warning,
            QStringLiteral("line-end"),
            odd.fileLine,
            odd.fileLine,
            odd.column,
            odd.column,
            QStringLiteral("ends in column %1 with a lone %2, where the file's other lines "
                           "end in CR LF: an editor may show one line, but the runner ends "
                           "the line there and reads what follows as line %3; remove the "
                           "%4, or end the line in CR LF")
                .arg(odd.column)
                .arg(lf ? QStringLiteral("LF (\\x0A)") : QStringLiteral("CR (\\x0D)"))
                .arg(odd.fileLine + 1)
                .arg(lf ? QStringLiteral("LF") : QStringLiteral("CR"))};
}

} // namespace larkspur
