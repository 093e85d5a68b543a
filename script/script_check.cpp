// The script check: the runner's own reading of a script, walked without playing it, and what
// in it will not play as its author meant.
#include "script/script_check.h"

#include "protocol/expectation_items.h"
#include "protocol/message_catalogue.h"
#include "protocol/readable_notation.h"
#include "script/expectation_waits.h"
#include "script/script_commands.h"
#include "script/script_reader.h"
#include "script/script_steps.h"

#include <QMap>

#include <algorithm>

namespace larkspur {

namespace {

using Level = CheckFinding::Level;
using Kind = ScriptStep::Kind;

// Where each kept line of the script text starts, and which line of the file it is.
class LineMap {
public:
    explicit LineMap(const ScriptText& script) : m_textSize(script.text.size()) {
        // Kept lines hold no line end of their own and end in CR LF; the ETX follows the last.
        for (qsizetype at = 0; at < m_textSize - 1; at = script.text.indexOf('\n', at) + 1) {
            m_starts.append(at + 1);
            m_fileLines.append(script.fileLineAt(at + 1));
        }
    }

    struct Place {
        int line = 0; // 0: the ETX or past it
        int column = 0;
    };
    Place place(qsizetype position) const {
        const qsizetype index = keptIndex(position);
        if (index < 0)
            return {};
        return {m_fileLines[index], int(position - m_starts[index] + 1)};
    }
    // The kept line holding `position`, or -1 for the ETX and beyond.
    qsizetype keptIndex(qsizetype position) const {
        if (position < 1 || position >= m_textSize)
            return -1;
        return std::upper_bound(m_starts.cbegin(), m_starts.cend(), position) - m_starts.cbegin() -
               1;
    }
    qsizetype lineStart(qsizetype index) const { return m_starts[index]; }
    int fileLine(qsizetype index) const { return m_fileLines[index]; }

private:
    qsizetype m_textSize;
    QList<qsizetype> m_starts;
    QList<int> m_fileLines;
};

QString quoted(const QString& text) {
    return u'"' + toReadable(text.toLatin1()) + u'"';
}

QString hotelLabel(Field field) {
    switch (field) {
    case Field::txt_suite_1:
        return QStringLiteral("room");
    case Field::txt_suite_2:
        return QStringLiteral("second room");
    case Field::Text1:
        return QStringLiteral("name");
    case Field::txt_department:
        return QStringLiteral("department");
    case Field::txt_location:
        return QStringLiteral("location");
    case Field::txt_time:
        return QStringLiteral("time");
    case Field::txt_credit:
        return QStringLiteral("credit");
    default:
        return fieldName(field);
    }
}

// The mailbox, or the second field as the catalogue names it in the log: "passcode", "fcos".
QString vmailLabel(const ScriptCommand& command, Field field) {
    const VmailMessage* message = findVmailMessage(command.word);
    if (field == Field::txt_ls_pilot || !message)
        return QStringLiteral("mailbox");
    return message->extraLabel.trimmed().remove(u':').toLower();
}

QString fieldLabel(const ScriptStep& step, qsizetype index, bool vmail) {
    const Field field = step.fields[index].field;
    switch (step.kind) {
    case Kind::Transaction:
        return vmail ? vmailLabel(*step.command, field) : hotelLabel(field);
    case Kind::LinkedSuite:
        return index == 0 ? QStringLiteral("pilot") : QStringLiteral("member %1").arg(index);
    default:
        return QStringLiteral("room");
    }
}

QString waitDescription(const ScriptStep& step) {
    const QString digit = waitDigit(step.digit);
    const int seconds = waitSeconds(digit);
    QString time =
        seconds == 0 ? QStringLiteral("no time limit") : QStringLiteral("up to %1 s").arg(seconds);
    if (digit != step.digit)
        time += QStringLiteral(" (%1 is no digit)").arg(quoted(step.digit));
    return QStringLiteral("%1 %2, %3").arg(step.word, step.expectation->item, time);
}

QString drives(const ScriptStep& step) {
    switch (step.kind) {
    case Kind::Transaction:
        return QStringLiteral("%1 (%2)").arg(controlName(step.command->button), step.command->name);
    case Kind::LinkedSuite:
        return hotelMessage(QStringLiteral("STE")).name + u' ' + step.word;
    case Kind::Expectation:
        return waitDescription(step);
    case Kind::PassedOver:
        return QStringLiteral("nothing: passed over");
    case Kind::End:
    case Kind::Unrecognized:
        break;
    }
    return QStringLiteral("stops the run: \"Command: %1\"").arg(toReadable(step.word.toLatin1()));
}

// The item a notice records under a head no wait is known by ("ATL " for "alt"), or nullptr.
const ExpectationItem* noticeRecordedAs(const QString& head) {
    for (const ExpectationItem& item : expectationItems())
        if (item.recordedNotice != item.recordedPlain && item.recordedNotice.left(4) == head)
            return &item;
    return nullptr;
}

// "line 3", "lines 3-5, 8".
QString linesText(QList<int> lines) {
    QStringList parts;
    for (qsizetype i = 0; i < lines.size();) {
        qsizetype j = i;
        while (j + 1 < lines.size() && lines[j + 1] == lines[j] + 1)
            ++j;
        parts << (j == i ? QString::number(lines[i])
                         : QStringLiteral("%1-%2").arg(lines[i]).arg(lines[j]));
        i = j + 1;
    }
    return (lines.size() > 1 ? QStringLiteral("lines ") : QStringLiteral("line ")) +
           parts.join(QStringLiteral(", "));
}

class Checker {
public:
    explicit Checker(const ScriptText& script)
        : m_script(script), m_lines(script), m_vmail(script.pmsMode != PmsMode::Hotel),
          m_alignedColumn(m_vmail ? 2 : 1) {}

    ScriptCheck run();

private:
    void leftOutLines();
    CheckRow describe(const ScriptStep& step) const;
    CheckedField field(const QString& label, const QString& control, qsizetype position, int width,
                       const QString& text) const;
    // Adds a finding and gives its index.
    int find(Level level, const QString& kind, int line, const QString& text);
    QString nextCommandPlace(qsizetype next) const;
    bool nextIsAligned(qsizetype next) const;
    void passedOver(const ScriptStep& step, CheckRow& row);
    void fieldsPastTheFrame(const ScriptStep& step, CheckRow& row);
    void afterCommand(const ScriptStep& step, CheckRow& row);

    const ScriptText& m_script;
    const LineMap m_lines;
    const bool m_vmail;
    const int m_alignedColumn;
    ScriptCheck m_check;
    // The finding that makes the runner read from mid-line, and the lines it reads so.
    int m_shiftCause = -1;
    QMap<int, QList<int>> m_shifted;
};

ScriptCheck Checker::run() {
    m_check.pmsMode = m_script.pmsMode;
    m_check.protocolType = m_script.protocolType;
    leftOutLines();
    for (qsizetype position = firstCommandPosition(m_script);;) {
        const ScriptStep step = readStep(m_script, position);
        if (step.kind == Kind::End)
            break;
        CheckRow row = describe(step);
        if (row.column != m_alignedColumn && m_shiftCause >= 0) {
            row.warned = true;
            m_shifted[m_shiftCause].append(row.line);
        }
        if (step.kind == Kind::Unrecognized) {
            row.stops = true;
            find(Level::Stop, QStringLiteral("unrecognized"), row.line,
                 QStringLiteral("%1 is no command the runner knows: the run stops here with "
                                "\"Command: %2\"")
                     .arg(quoted(step.word), step.stopCommand));
        } else if (step.kind == Kind::PassedOver) {
            passedOver(step, row);
        } else {
            afterCommand(step, row);
        }
        m_check.rows.append(row);
        if (row.stops)
            break;
        position = step.next;
    }
    for (auto it = m_shifted.cbegin(); it != m_shifted.cend(); ++it)
        m_check.findings[it.key()].text +=
            QStringLiteral("; the commands read from mid-line after it: %1")
                .arg(linesText(it.value()));
    std::stable_sort(m_check.findings.begin(), m_check.findings.end(),
                     [](const CheckFinding& a, const CheckFinding& b) { return a.line < b.line; });
    return m_check;
}

void Checker::leftOutLines() {
    using Reason = ScriptText::LeftOut::Reason;
    for (const ScriptText::LeftOut& out : m_script.leftOut) {
        const QString line = QString::fromLatin1(out.line);
        switch (out.reason) {
        case Reason::Comment:
        case Reason::Blank: {
            const QString kind =
                out.reason == Reason::Comment ? QStringLiteral("comment") : QStringLiteral("blank");
            CheckFinding* last = m_check.findings.isEmpty() ? nullptr : &m_check.findings.last();
            if (last && last->kind == kind && last->lastLine == out.fileLine - 1) {
                last->lastLine = out.fileLine;
                last->text = kind + QStringLiteral(" lines, left out");
            } else {
                find(Level::Note, kind, out.fileLine, kind + QStringLiteral(" line, left out"));
            }
            break;
        }
        case Reason::HoldsVmail:
            if (out.fileLine == 1)
                find(Level::Note, QStringLiteral("header"), 1,
                     QStringLiteral("the header line, left out"));
            else
                find(Level::Warning, QStringLiteral("vmail-line"), out.fileLine,
                     QStringLiteral("holds \"VMAIL\", so it is left out and never played: %1")
                         .arg(quoted(line)));
            break;
        case Reason::LastLine:
            find(Level::Warning, QStringLiteral("last-line"), out.fileLine,
                 QStringLiteral("the file's last line is never played: %1; add a comment line "
                                "after it to have it played")
                     .arg(quoted(line)));
            break;
        }
    }
}

CheckRow Checker::describe(const ScriptStep& step) const {
    CheckRow row;
    const LineMap::Place at = m_lines.place(step.start);
    row.line = at.line;
    row.column = at.column;
    row.command = step.word;
    row.drives = drives(step);
    row.plays = step.kind == Kind::Transaction || step.kind == Kind::LinkedSuite ||
                step.kind == Kind::Expectation;
    if (step.kind == Kind::Expectation || step.kind == Kind::PassedOver)
        row.fields.append(field(QStringLiteral("item"), QString(), step.start + 5, 4,
                                QString::fromLatin1(m_script.text.mid(step.start + 4, 4))));
    for (qsizetype i = 0; i < step.fields.size(); ++i) {
        const ReadField& f = step.fields[i];
        // A linked suite has as many members as its line holds.
        if (step.kind == Kind::LinkedSuite && f.text.isEmpty())
            continue;
        row.fields.append(
            field(fieldLabel(step, i, m_vmail), fieldName(f.field), f.position, f.width, f.text));
    }
    if (step.kind == Kind::Expectation)
        row.fields.append(field(QStringLiteral("digit"), QString(), step.next - 3, 1, step.digit));
    return row;
}

CheckedField Checker::field(const QString& label, const QString& control, qsizetype position,
                            int width, const QString& text) const {
    const LineMap::Place at = m_lines.place(position);
    return {label, control, at.line, at.column, at.line == 0 ? 0 : at.column + width - 1, text};
}

int Checker::find(Level level, const QString& kind, int line, const QString& text) {
    m_check.findings.append({level, kind, line, line, text});
    return int(m_check.findings.size() - 1);
}

QString Checker::nextCommandPlace(qsizetype next) const {
    const LineMap::Place at = m_lines.place(next);
    if (at.line == 0)
        return QStringLiteral("the next command is read from past the script's last line");
    // Kept lines end in CR LF.
    const qsizetype index = m_lines.keptIndex(next);
    if (next >= m_script.text.indexOf('\n', m_lines.lineStart(index) - 1))
        return QStringLiteral("the next command is read from the CR LF that ends line %1")
            .arg(at.line);
    return QStringLiteral("the next command is read from line %1, column %2")
        .arg(at.line)
        .arg(at.column);
}

bool Checker::nextIsAligned(qsizetype next) const {
    const LineMap::Place at = m_lines.place(next);
    return at.line == 0 ? readStep(m_script, next).kind == Kind::End : at.column == m_alignedColumn;
}

void Checker::passedOver(const ScriptStep& step, CheckRow& row) {
    const QString head = QString::fromLatin1(m_script.text.mid(step.start + 4, 4));
    const ExpectationItem* notice = step.word == u"NTFY" ? noticeRecordedAs(head) : nullptr;
    row.warned = true;
    m_shiftCause =
        notice ? find(Level::Warning, QStringLiteral("alt-notice"), row.line,
                      QStringLiteral("NTFY %1 is how a notice for \"%2\" is recorded, and the "
                                     "runner passes it over: nothing waits, and %3")
                          .arg(quoted(head), notice->item, nextCommandPlace(step.next)))
               : find(Level::Warning, QStringLiteral("passed-over"), row.line,
                      QStringLiteral("%1 %2 names no expectation the runner knows: it is passed "
                                     "over, nothing waits, and %3")
                          .arg(step.word, quoted(head), nextCommandPlace(step.next)));
}

void Checker::fieldsPastTheFrame(const ScriptStep& step, CheckRow& row) {
    // A voice-mail field that holds the frame's end was read from a frame too short for it.
    for (const CheckedField& f : std::as_const(row.fields)) {
        if (!f.text.contains(QChar(3)) && !f.text.contains(u'~') && !f.text.contains(u'\r') &&
            !f.text.contains(u'\n'))
            continue;
        row.warned = true;
        find(Level::Warning, QStringLiteral("field-overrun"), row.line,
             QStringLiteral("%1 %2 (columns %3-%4) runs past the end of the frame: %5")
                 .arg(step.word, f.label)
                 .arg(f.firstColumn)
                 .arg(f.lastColumn)
                 .arg(quoted(f.text)));
    }
}

void Checker::afterCommand(const ScriptStep& step, CheckRow& row) {
    if (m_vmail)
        fieldsPastTheFrame(step, row);
    if (step.next == 0) {
        row.stops = true;
        find(Level::Stop, QStringLiteral("no-tilde"), row.line,
             QStringLiteral("no \"~\" after its frame, nor on any line after it: the run stops "
                            "after this command with \"Command: %1\"")
                 .arg(step.stopCommand));
        return;
    }
    if (nextIsAligned(step.next)) {
        if (m_vmail) {
            // The "~" that ends this command may stand on a later line, passing over the lines
            // between.
            const qsizetype own = m_lines.keptIndex(step.start);
            const qsizetype tilde = m_lines.keptIndex(step.next - 4);
            if (own >= 0 && tilde > own) {
                row.warned = true;
                QList<int> skipped;
                for (qsizetype k = own + 1; k <= tilde; ++k)
                    skipped.append(m_lines.fileLine(k));
                find(Level::Warning, QStringLiteral("no-tilde"), row.line,
                     QStringLiteral("no \"~\" after its frame: the runner looks for the next "
                                    "command after the \"~\" of line %1 and passes over %2")
                         .arg(m_lines.fileLine(tilde))
                         .arg(linesText(skipped)));
            }
        }
        m_shiftCause = -1;
        return;
    }
    if (row.column != m_alignedColumn && m_shiftCause >= 0)
        return; // still read from mid-line, for the reason already told
    row.warned = true;
    const qsizetype own = m_lines.keptIndex(step.start);
    QString why;
    if (m_vmail) {
        why = QStringLiteral("the first \"~\" after the code stands in column %1, not at the "
                             "line's end")
                  .arg(m_lines.place(step.next - 4).column);
    } else {
        const qsizetype lineEnd = m_script.text.indexOf("\r\n", step.start - 1) + 1;
        const qsizetype lineStart = m_lines.lineStart(own);
        why = QStringLiteral("%1 fills columns %2-%3, but the line is %4 characters long")
                  .arg(step.word)
                  .arg(row.column)
                  .arg(step.next - 2 - lineStart)
                  .arg(lineEnd - lineStart);
    }
    m_shiftCause = find(Level::Warning, QStringLiteral("misfit"), row.line,
                        why + QStringLiteral(": ") + nextCommandPlace(step.next));
}

} // namespace

QString CheckedField::columns() const {
    if (line == 0)
        return QStringLiteral("past the end");
    return firstColumn == lastColumn ? QString::number(firstColumn)
                                     : QStringLiteral("%1-%2").arg(firstColumn).arg(lastColumn);
}

QString CheckedField::describe() const {
    return QStringLiteral("%1 %2 %3").arg(label, columns(), quoted(text));
}

QString CheckFinding::levelName() const {
    switch (level) {
    case Level::Note:
        return QStringLiteral("note");
    case Level::Warning:
        return QStringLiteral("warning");
    case Level::Stop:
        break;
    }
    return QStringLiteral("stop");
}

QString CheckFinding::lines() const {
    return lastLine > line ? QStringLiteral("lines %1-%2").arg(line).arg(lastLine)
                           : QStringLiteral("line %1").arg(line);
}

QString ScriptCheck::verdictName() const {
    switch (verdict()) {
    case Verdict::Clean:
        return QStringLiteral("clean");
    case Verdict::Warnings:
        return QStringLiteral("warnings");
    case Verdict::Stops:
        break;
    }
    return QStringLiteral("stops");
}

QString ScriptCheck::verdictText() const {
    const auto warnings = std::count_if(findings.cbegin(), findings.cend(), [](const auto& f) {
        return f.level == CheckFinding::Level::Warning;
    });
    switch (verdict()) {
    case Verdict::Clean:
        return QStringLiteral("clean: every command plays as written");
    case Verdict::Warnings:
        return QStringLiteral("%1 warning(s)").arg(warnings);
    case Verdict::Stops:
        break;
    }
    const QString stops = QStringLiteral("the run stops as unrecognised");
    return warnings == 0 ? stops : QStringLiteral("%1 warning(s); %2").arg(warnings).arg(stops);
}

ScriptCheck::Verdict ScriptCheck::verdict() const {
    Verdict verdict = Verdict::Clean;
    for (const CheckFinding& finding : findings) {
        if (finding.level == CheckFinding::Level::Stop)
            return Verdict::Stops;
        if (finding.level == CheckFinding::Level::Warning)
            verdict = Verdict::Warnings;
    }
    return verdict;
}

ScriptCheck checkScript(const ScriptText& script) {
    return Checker(script).run();
}

} // namespace larkspur
