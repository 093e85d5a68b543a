// The script check: the runner's own reading of a script, walked without playing it, and what
// in it will not play as its author meant. What a transaction will log or send is foreseen by
// the transaction's own rules, applied to the fields as the runner reads them.
#include "script/script_check.h"

#include "protocol/expectation_items.h"
#include "protocol/message_catalogue.h"
#include "protocol/readable_notation.h"
#include "script/check_quotes.h"
#include "script/expectation_waits.h"
#include "script/reader_notes.h"
#include "script/script_commands.h"
#include "script/script_reader.h"
#include "script/script_steps.h"
#include "transactions/press_steps.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace larkspur {

namespace {

using Level = CheckFinding::Level;
using Kind = ScriptStep::Kind;

bool isBlank(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c == u' '; });
}

// Where each kept line of the script text starts, and which line of the file it is, found by
// moving from the place asked for last: a walk from the top to the end passes each line end
// about once, and nothing is kept per line.
class LinePlaces {
public:
    explicit LinePlaces(const ScriptText& script)
        : m_script(script), m_text(script.text), m_end(m_text.indexOf('\n')) {}

    struct Place {
        int line = 0; // 0: the ETX or past it
        int column = 0;
    };
    Place place(qsizetype position) {
        const qsizetype index = keptIndex(position);
        if (index < 0)
            return {};
        return {m_script.fileLineOfKept(index), int(position - 1 - m_start + 1)};
    }
    // The kept line holding `position` (1-based), or -1 for the ETX and beyond.
    qsizetype keptIndex(qsizetype position) {
        if (position < 1 || position >= m_text.size())
            return -1;
        const qsizetype at = position - 1;
        while (at > m_end) {
            m_start = m_end + 1;
            m_end = m_text.indexOf('\n', m_start);
            ++m_index;
        }
        while (at < m_start) {
            m_end = m_start - 1;
            m_start = m_start >= 2 ? m_text.lastIndexOf('\n', m_start - 2) + 1 : 0;
            --m_index;
        }
        return m_index;
    }
    // Where the kept line holding `position` starts (1-based); `position` must be on one.
    qsizetype lineStart(qsizetype position) {
        keptIndex(position);
        return m_start + 1;
    }
    int fileLine(qsizetype keptIndex) const { return m_script.fileLineOfKept(keptIndex); }

private:
    const ScriptText& m_script;
    const QByteArray& m_text;
    // The kept line of the last answer: its index, where it starts and where its LF stands.
    qsizetype m_index = 0;
    qsizetype m_start = 0;
    qsizetype m_end;
};

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
QString linesText(const QList<int>& lines) {
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

// A press foreseen: what the transaction refuses and what it sends, every message taken.
class Foresight : public PressSteps {
public:
    QList<FieldRefusal> refusals;
    QList<PressMessage> messages;

    void refuse(const FieldRefusal& refusal) override { refusals.append(refusal); }
    bool send(const PressMessage& message) override {
        messages.append(message);
        return true;
    }
};

class Checker {
public:
    Checker(const ScriptText& script, const CheckOptions& options, CheckSink& sink)
        : m_script(script), m_options(options), m_sink(sink), m_lines(script), m_notes(script),
          m_vmail(script.pmsMode != PmsMode::Hotel), m_alignedColumn(m_vmail ? 2 : 1) {}

    void run();

private:
    CheckRow describe(const ScriptStep& step);
    CheckedField field(const QString& label, const QString& control, qsizetype position, int width,
                       const QString& text);
    // A finding of the walk: told at once, or after the cause of a shift it follows.
    void find(Level level, const QString& kind, int line, const QString& text,
              const CheckedField* about = nullptr);
    // The finding that makes the runner read from mid-line: held until the shift ends, so that
    // the lines read from mid-line after it can be named.
    void startShift(Level level, const QString& kind, int line, const QString& text);
    void endShift();
    // Tells `finding` after every note of the reader about a line up to its own.
    void release(const CheckFinding& finding);

    QString nextCommandPlace(qsizetype next);
    bool nextIsAligned(qsizetype next);
    void passedOver(const ScriptStep& step, CheckRow& row);
    bool fieldsPastTheFrame(const ScriptStep& step, CheckRow& row);
    void foresee(const ScriptStep& step, CheckRow& row, bool overrun);
    void refused(const ScriptStep& step, CheckRow& row, const Foresight& press);
    void sentOtherwise(const ScriptStep& step, CheckRow& row, const PressMessage& message,
                       const QString& written);
    QString written(const ScriptStep& step);
    void afterCommand(const ScriptStep& step, CheckRow& row);

    const ScriptText& m_script;
    const CheckOptions m_options;
    CheckSink& m_sink;
    LinePlaces m_lines;
    ReaderNotes m_notes;
    const bool m_vmail;
    const int m_alignedColumn;
    // The cause of the shift in progress first, then what was found after it; and the lines of
    // the commands read from mid-line since.
    QList<CheckFinding> m_held;
    QList<int> m_shifted;
};

void Checker::run() {
    for (qsizetype position = firstCommandPosition(m_script);;) {
        const ScriptStep step = readStep(m_script, position);
        if (step.kind == Kind::End)
            break;
        CheckRow row = describe(step);
        if (row.column != m_alignedColumn && !m_held.isEmpty()) {
            row.warned = true;
            m_shifted.append(row.line);
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
        m_sink.row(row);
        if (row.stops)
            break;
        position = step.next;
    }
    endShift();
    CheckFinding note;
    while (m_notes.next(INT_MAX, note))
        m_sink.finding(note);
}

CheckRow Checker::describe(const ScriptStep& step) {
    CheckRow row;
    const LinePlaces::Place at = m_lines.place(step.start);
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
        // A linked suite has as many members as its line holds: blanks after the last are none.
        if (step.kind == Kind::LinkedSuite &&
            (f.text.isEmpty() ||
             (i > 0 && isBlank(QString::fromLatin1(m_script.text.mid(
                           f.position - 1, qMax<qsizetype>(0, step.next - 2 - f.position)))))))
            continue;
        row.fields.append(
            field(fieldLabel(step, i, m_vmail), fieldName(f.field), f.position, f.width, f.text));
    }
    if (step.kind == Kind::LinkedSuite) {
        // The reader takes four members; whatever the line holds after them stays there: from its
        // first character that is not a blank to its last.
        qsizetype first = step.fields.last().position + step.fields.last().width;
        qsizetype last = step.next - 3; // before its CR
        while (first <= last && m_script.text.at(first - 1) == ' ')
            ++first;
        while (last >= first && m_script.text.at(last - 1) == ' ')
            --last;
        if (first <= last)
            row.fields.append(field(
                QStringLiteral("past member 4"), QString(), first, int(last - first + 1),
                QString::fromLatin1(m_script.text.mid(first - 1, 64)).left(int(last - first + 1))));
    }
    if (step.kind == Kind::Expectation)
        row.fields.append(field(QStringLiteral("digit"), QString(), step.next - 3, 1, step.digit));
    return row;
}

CheckedField Checker::field(const QString& label, const QString& control, qsizetype position,
                            int width, const QString& text) {
    const LinePlaces::Place at = m_lines.place(position);
    return {label, control, at.line, at.column, at.line == 0 ? 0 : at.column + width - 1, text};
}

void Checker::find(Level level, const QString& kind, int line, const QString& text,
                   const CheckedField* about) {
    CheckFinding finding{level, kind, line, line, 0, 0, text};
    if (about && about->line == line) {
        finding.firstColumn = about->firstColumn;
        finding.lastColumn = about->lastColumn;
    }
    if (m_held.isEmpty())
        release(finding);
    else
        m_held.append(finding);
}

void Checker::startShift(Level level, const QString& kind, int line, const QString& text) {
    endShift();
    m_held.append({level, kind, line, line, 0, 0, text});
}

void Checker::endShift() {
    if (m_held.isEmpty())
        return;
    if (!m_shifted.isEmpty())
        m_held.first().text += QStringLiteral("; the commands read from mid-line after it: %1")
                                   .arg(linesText(m_shifted));
    const QList<CheckFinding> held = std::exchange(m_held, {});
    m_shifted.clear();
    for (const CheckFinding& finding : held)
        release(finding);
}

void Checker::release(const CheckFinding& finding) {
    CheckFinding note;
    while (m_notes.next(finding.line == 0 ? INT_MAX : finding.line, note))
        m_sink.finding(note);
    m_sink.finding(finding);
}

QString Checker::nextCommandPlace(qsizetype next) {
    const LinePlaces::Place at = m_lines.place(next);
    if (at.line == 0)
        return QStringLiteral("the next command is read from past the script's last line");
    // Kept lines end in CR LF.
    if (next >= m_script.text.indexOf('\n', m_lines.lineStart(next) - 1))
        return QStringLiteral("the next command is read from the CR LF that ends line %1")
            .arg(at.line);
    return QStringLiteral("the next command is read from line %1, column %2")
        .arg(at.line)
        .arg(at.column);
}

bool Checker::nextIsAligned(qsizetype next) {
    const LinePlaces::Place at = m_lines.place(next);
    return at.line == 0 ? readStep(m_script, next).kind == Kind::End : at.column == m_alignedColumn;
}

void Checker::passedOver(const ScriptStep& step, CheckRow& row) {
    const QString head = QString::fromLatin1(m_script.text.mid(step.start + 4, 4));
    const ExpectationItem* notice = step.word == u"NTFY" ? noticeRecordedAs(head) : nullptr;
    row.warned = true;
    if (notice)
        startShift(Level::Warning, QStringLiteral("alt-notice"), row.line,
                   QStringLiteral("NTFY %1 is how a notice for \"%2\" is recorded, and the "
                                  "runner passes it over: nothing waits, and %3")
                       .arg(quoted(head), notice->item, nextCommandPlace(step.next)));
    else
        startShift(Level::Warning, QStringLiteral("passed-over"), row.line,
                   QStringLiteral("%1 %2 names no expectation the runner knows: it is passed "
                                  "over, nothing waits, and %3")
                       .arg(step.word, quoted(head), nextCommandPlace(step.next)));
}

bool Checker::fieldsPastTheFrame(const ScriptStep& step, CheckRow& row) {
    // A voice-mail field that holds the frame's end was read from a frame too short for it.
    bool found = false;
    for (const CheckedField& f : std::as_const(row.fields)) {
        if (!f.text.contains(QChar(3)) && !f.text.contains(u'~') && !f.text.contains(u'\r') &&
            !f.text.contains(u'\n'))
            continue;
        row.warned = true;
        found = true;
        find(Level::Warning, QStringLiteral("field-overrun"), row.line,
             QStringLiteral("%1 %2 (columns %3-%4) runs past the end of the frame: %5")
                 .arg(step.word, f.label)
                 .arg(f.firstColumn)
                 .arg(f.lastColumn)
                 .arg(quoted(f.text)),
             &f);
    }
    return found;
}

// The field of the row that fills `field`, or nullptr.
const CheckedField* rowField(const CheckRow& row, Field field) {
    const QString name = fieldName(field);
    for (const CheckedField& f : row.fields)
        if (f.control == name)
            return &f;
    return nullptr;
}

// "time (columns 4-7) "0799"", on the row's line or another.
QString fieldPlace(const CheckedField& f, int rowLine) {
    const QString columns =
        f.firstColumn == f.lastColumn
            ? QStringLiteral("column %1").arg(f.firstColumn)
            : QStringLiteral("columns %1-%2").arg(f.firstColumn).arg(f.lastColumn);
    const QString where =
        f.line == rowLine ? columns : QStringLiteral("line %1, %2").arg(f.line).arg(columns);
    return QStringLiteral("%1 (%2) %3").arg(f.label, where, quotedShort(f.text));
}

void Checker::foresee(const ScriptStep& step, CheckRow& row, bool overrun) {
    if (step.kind != Kind::Transaction && step.kind != Kind::LinkedSuite)
        return;
    // The runner clears the room fields and fills those the line holds; every other field a
    // transaction reads, its own line fills.
    const PressInput input{.text =
                               [&step](Field field) {
                                   for (const ReadField& f : step.fields)
                                       if (f.field == field)
                                           return f.text;
                                   return QString();
                               },
                           .errorMode = m_options.errorMode,
                           .protocol = m_script.protocolType};
    Foresight press;
    if (step.kind == Kind::Transaction)
        step.command->steps(input, press);
    else
        pressLinkedSuite(step.word, input, press);
    for (const PressMessage& message : std::as_const(press.messages))
        row.sends << message.body;
    for (const FieldRefusal& refusal : std::as_const(press.refusals))
        row.refusals << refusal.text;
    if (!press.refusals.isEmpty())
        refused(step, row, press);
    if (press.messages.isEmpty())
        return;
    // Blanks that end a linked-suite line are nothing, whether or not some of them go out.
    QString sent = press.messages.first().body;
    if (step.kind == Kind::LinkedSuite)
        while (sent.endsWith(u' '))
            sent.chop(1);
    const QString asWritten = written(step);
    if (sent == asWritten)
        return;
    // A field read past its frame is told already; the frame built from it is another.
    if (overrun)
        row.asWritten = false;
    else
        sentOtherwise(step, row, press.messages.first(), asWritten);
}

void Checker::refused(const ScriptStep& step, CheckRow& row, const Foresight& press) {
    row.warned = true;
    row.asWritten = false;
    // What the run says, in order: the lines it logs, or the notices it gives.
    QStringList said;
    for (qsizetype i = 0; i < press.refusals.size();) {
        const bool notice = press.refusals[i].notice;
        QStringList texts;
        for (; i < press.refusals.size() && press.refusals[i].notice == notice; ++i)
            texts << u'"' + press.refusals[i].text + u'"';
        said << (notice ? QStringLiteral("tells %1 in a notice") : QStringLiteral("logs %1"))
                    .arg(texts.join(QStringLiteral(" then ")));
    }
    QString sends = QStringLiteral("sends nothing");
    if (!press.messages.isEmpty()) {
        QStringList bodies;
        for (const PressMessage& message : press.messages)
            bodies << quoted(message.body);
        sends = QStringLiteral("sends only %1").arg(bodies.join(QStringLiteral(", ")));
    }
    const QString run =
        QStringLiteral("the run %1%2 %3")
            .arg(said.join(QStringLiteral(", then ")),
                 said.size() > 1 ? QStringLiteral(", and") : QStringLiteral(" and"), sends);
    const CheckedField* f = rowField(row, press.refusals.first().field);
    const QString word = toReadable(step.word.toLatin1());
    find(Level::Warning, QStringLiteral("refused"), row.line,
         f ? QStringLiteral("%1 %2: %3").arg(word, fieldPlace(*f, row.line), run)
           : QStringLiteral("%1: %2").arg(word, run),
         f);
}

void Checker::sentOtherwise(const ScriptStep& step, CheckRow& row, const PressMessage& message,
                            const QString& written) {
    row.warned = true;
    row.asWritten = false;
    QStringList items;
    const CheckedField* first = nullptr;
    for (const SentField& sent : message.fields) {
        const CheckedField* f = rowField(row, sent.field);
        if (!f || f->text == sent.form)
            continue;
        items
            << QStringLiteral("%1 goes out as %2").arg(fieldPlace(*f, row.line), quoted(sent.form));
        first = first ? first : f;
    }
    // What the line holds that the message leaves out: a field the transaction does not send, a
    // blank member before another, what stands past the fourth member.
    for (qsizetype i = 0; i < row.fields.size(); ++i) {
        const CheckedField& f = row.fields[i];
        const bool sent =
            std::any_of(message.fields.cbegin(), message.fields.cend(),
                        [&f](const SentField& s) { return fieldName(s.field) == f.control; });
        if (sent || f.label == u"item" || f.label == u"digit")
            continue;
        const bool laterText =
            std::any_of(row.fields.cbegin() + i + 1, row.fields.cend(),
                        [](const CheckedField& later) { return !isBlank(later.text); });
        if (isBlank(f.text) && !laterText)
            continue;
        items << QStringLiteral("%1 is not sent").arg(fieldPlace(f, row.line));
        first = first ? first : &f;
    }
    const QString word = toReadable(step.word.toLatin1());
    const QString sends = QStringLiteral("the run sends %1 where the line holds %2")
                              .arg(quotedShort(message.body), quotedShort(written));
    find(Level::Warning, QStringLiteral("sends-otherwise"), row.line,
         items.isEmpty()
             ? QStringLiteral("%1: %2").arg(word, sends)
             : QStringLiteral("%1 %2; %3").arg(word, items.join(QStringLiteral("; ")), sends),
         first);
}

// What the line holds for the first message of its command: a hotel line from its word to its
// last field, a linked suite to its last character that is not a blank, a voice-mail line from
// its framing character up to its "~" or line end.
QString Checker::written(const ScriptStep& step) {
    const QByteArray& text = m_script.text;
    if (step.kind == Kind::LinkedSuite) {
        QByteArray line = text.mid(step.start - 1, step.next - 2 - step.start);
        while (line.endsWith(' '))
            line.chop(1);
        return QString::fromLatin1(line);
    }
    if (!m_vmail)
        return QString::fromLatin1(text.mid(step.start - 1, step.next - 2 - step.start));
    const qsizetype from = step.lineStart - 1;
    qsizetype end = text.indexOf("\r\n", from);
    const qsizetype tilde = text.indexOf('~', from);
    if (end < 0 || (tilde >= 0 && tilde < end))
        end = tilde;
    return QString::fromLatin1(text.mid(from, end < 0 ? -1 : end - from));
}

void Checker::afterCommand(const ScriptStep& step, CheckRow& row) {
    const bool overrun = m_vmail && fieldsPastTheFrame(step, row);
    foresee(step, row, overrun);
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
        endShift();
        return;
    }
    if (row.column != m_alignedColumn && !m_held.isEmpty())
        return; // still read from mid-line, for the reason already told
    row.warned = true;
    QString why;
    if (m_vmail) {
        why = QStringLiteral("the first \"~\" after the code stands in column %1, not at the "
                             "line's end")
                  .arg(m_lines.place(step.next - 4).column);
    } else {
        const qsizetype lineEnd = m_script.text.indexOf("\r\n", step.start - 1) + 1;
        const qsizetype lineStart = m_lines.lineStart(step.start);
        why = QStringLiteral("%1 fills columns %2-%3, but the line is %4 characters long")
                  .arg(step.word)
                  .arg(row.column)
                  .arg(step.next - 2 - lineStart)
                  .arg(lineEnd - lineStart);
    }
    startShift(Level::Warning, QStringLiteral("misfit"), row.line,
               why + QStringLiteral(": ") + nextCommandPlace(step.next));
}

// Keeps the whole check.
class Keeper : public CheckSink {
public:
    explicit Keeper(ScriptCheck& check) : m_check(check) {}
    void row(const CheckRow& row) override { m_check.rows.append(row); }
    void finding(const CheckFinding& finding) override { m_check.findings.append(finding); }

private:
    ScriptCheck& m_check;
};

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

void CheckTally::add(const CheckFinding& finding) {
    if (finding.level == Level::Warning)
        ++warnings;
    else if (finding.level == Level::Stop)
        stops = true;
}

CheckVerdict CheckTally::verdict() const {
    return stops          ? CheckVerdict::Stops
           : warnings > 0 ? CheckVerdict::Warnings
                          : CheckVerdict::Clean;
}

QString CheckTally::verdictName() const {
    switch (verdict()) {
    case CheckVerdict::Clean:
        return QStringLiteral("clean");
    case CheckVerdict::Warnings:
        return QStringLiteral("warnings");
    case CheckVerdict::Stops:
        break;
    }
    return QStringLiteral("stops");
}

QString CheckTally::verdictText() const {
    switch (verdict()) {
    case CheckVerdict::Clean:
        return QStringLiteral("clean: every command plays as written");
    case CheckVerdict::Warnings:
        return QStringLiteral("%1 warning(s)").arg(warnings);
    case CheckVerdict::Stops:
        break;
    }
    const QString stopsText = QStringLiteral("the run stops as unrecognised");
    return warnings == 0 ? stopsText
                         : QStringLiteral("%1 warning(s); %2").arg(warnings).arg(stopsText);
}

namespace {
CheckTally tallyOf(const QList<CheckFinding>& findings) {
    CheckTally tally;
    for (const CheckFinding& finding : findings)
        tally.add(finding);
    return tally;
}
} // namespace

ScriptCheck::Verdict ScriptCheck::verdict() const {
    return tallyOf(findings).verdict();
}

QString ScriptCheck::verdictName() const {
    return tallyOf(findings).verdictName();
}

QString ScriptCheck::verdictText() const {
    return tallyOf(findings).verdictText();
}

void checkScript(const ScriptText& script, const CheckOptions& options, CheckSink& sink) {
    Checker(script, options, sink).run();
}

ScriptCheck checkScript(const ScriptText& script, const CheckOptions& options) {
    ScriptCheck check;
    check.pmsMode = script.pmsMode;
    check.protocolType = script.protocolType;
    Keeper keeper(check);
    checkScript(script, options, keeper);
    return check;
}

} // namespace larkspur
