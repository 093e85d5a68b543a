// Reading the script text as the runner does: where each command starts, its word, its fields
// by column and where the next one starts. Positions are 1-based, as the script columns are.
#include "script/script_steps.h"

#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "protocol/readable_notation.h"
#include "script/script_commands.h"
#include "script/script_reader.h"

namespace larkspur {

namespace {

// The script text, one byte a character, read at 1-based positions.
struct Cursor {
    const QByteArray& text;
    QString at(qsizetype from, qsizetype width) const {
        return from < 1 ? QString() : QString::fromLatin1(text.mid(from - 1, width));
    }
    // The line around `from`, for reports: up to its CR LF (or "~" in voice-mail scripts).
    QString lineFrom(qsizetype from, bool vmail) const {
        const qsizetype begin = qMax<qsizetype>(0, from - 1);
        qsizetype end = text.indexOf(vmail ? "~" : "\r\n", begin);
        if (end < 0)
            end = text.indexOf("\r\n", begin);
        if (end < 0)
            end = text.size();
        return QString::fromLatin1(text.mid(begin, end - begin));
    }
};

bool isLinkedSuiteWord(const QString& word) {
    return word.startsWith(u"STE") && word.size() == 4 &&
           QStringLiteral("012345678AB").contains(word.at(3));
}

void readTransaction(const Cursor& cursor, bool vmail, ScriptStep& step) {
    // A voice-mail line's fields follow its code; a hotel line's columns count from its word.
    const qsizetype base = vmail ? step.start + 1 : step.start;
    for (const FieldColumn& copy : step.command->copies) {
        const qsizetype at = base + copy.column - 1;
        step.fields.append({copy.field, at, copy.width, cursor.at(at, copy.width)});
    }
    if (!vmail) {
        const FieldColumn& last = step.command->copies.last();
        step.next = base + last.column - 1 + last.width + 2;
        return;
    }
    // The next line starts past "~", CR, LF and its own framing character. Without a "~" there
    // is no next command to find: the line is not one the runner knows.
    const qsizetype tilde = cursor.text.indexOf('~', step.start);
    if (tilde >= 0) {
        step.next = tilde + 1 + 4;
        return;
    }
    step.stopCommand = toReadable(step.line.mid(1).toLatin1());
    step.stopReason = QStringLiteral("a voice-mail line without \"~\" after its frame: ") +
                      toReadable(step.line.toLatin1());
}

void readLinkedSuite(const Cursor& cursor, ScriptStep& step) {
    // Pilot in columns 6-10, then up to four members, each after one blank, to the line's end.
    qsizetype lineEnd = cursor.text.indexOf("\r\n", step.start - 1) + 1; // 1-based CR
    if (lineEnd <= 0)
        lineEnd = cursor.text.size() + 1;
    const auto upToLineEnd = [&](Field field, qsizetype from) {
        constexpr qsizetype width = 5;
        const QString text =
            from >= lineEnd
                ? QString()
                : QString::fromLatin1(cursor.text.mid(from - 1, qMin(width, lineEnd - from)));
        step.fields.append({field, from, int(width), text});
    };
    upToLineEnd(Field::txt_ls_pilot, step.start + 5);
    const Field members[] = {Field::txt_suite_1, Field::txt_suite_2, Field::txt_suite_3,
                             Field::txt_suite_4};
    for (int k = 0; k < 4; ++k)
        upToLineEnd(members[k], step.start + 11 + 6 * k);
    step.next = lineEnd + 2;
}

void readExpectation(const Cursor& cursor, ScriptStep& step) {
    step.expectation = findExpectationByScriptHead(cursor.at(step.start + 5, 4));
    // An expectation it does not know is passed over, and the next command is read from where
    // this one's expectation began.
    if (!step.expectation) {
        step.kind = ScriptStep::Kind::PassedOver;
        step.next = step.start + 5;
        return;
    }
    step.kind = ScriptStep::Kind::Expectation;
    step.waitKind = step.word == u"WAIT" ? WaitKind::Plain : WaitKind::WithNotice;
    qsizetype digitAt = step.start + 5 + 4;
    if (const int offset = step.expectation->roomOffset(); offset > 0) {
        const qsizetype roomAt = step.start + 5 + offset;
        step.fields.append({Field::txt_suite_1, roomAt, 5, cursor.at(roomAt, 5)});
        digitAt = roomAt + 5 + 1;
    }
    step.digit = cursor.at(digitAt, 1);
    step.next = digitAt + 1 + 2;
}

} // namespace

qsizetype firstCommandPosition(const ScriptText& script) {
    return script.pmsMode == PmsMode::Hotel ? 1 : 2;
}

ScriptStep readStep(const ScriptText& script, qsizetype position) {
    const bool vmail = script.pmsMode != PmsMode::Hotel;
    const Cursor cursor{script.text};
    ScriptStep step;
    step.start = position;
    step.lineStart = position;
    if (vmail) {
        step.word = cursor.at(position, 1);
        if (step.word.isEmpty())
            step.word = end_of_text();
    } else {
        step.word = cursor.at(position, 4);
    }

    if ((step.command = findScriptCommand(step.word))) {
        step.kind = ScriptStep::Kind::Transaction;
        step.lineStart = vmail ? position - 1 : position;
        step.line = cursor.lineFrom(step.lineStart, vmail);
        readTransaction(cursor, vmail, step);
    } else if (!vmail && isLinkedSuiteWord(step.word)) {
        step.kind = ScriptStep::Kind::LinkedSuite;
        step.line = cursor.lineFrom(position, vmail);
        readLinkedSuite(cursor, step);
    } else if (!vmail && (step.word == u"NTFY" || step.word == u"WAIT")) {
        step.line = cursor.lineFrom(position, vmail);
        readExpectation(cursor, step);
    } else if (step.word == end_of_text()) {
        step.kind = ScriptStep::Kind::End;
    } else {
        step.kind = ScriptStep::Kind::Unrecognized;
        // On one line, whatever bytes the word holds: a NUL, a line end, a byte order mark.
        step.stopCommand = toReadable(step.word.toLatin1());
        step.stopReason =
            QStringLiteral("unrecognized command \"%1\"").arg(toReadable(step.word.toLatin1()));
    }
    return step;
}

qsizetype commandCount(const ScriptText& script) {
    qsizetype count = 0;
    for (qsizetype position = firstCommandPosition(script);;) {
        const ScriptStep step = readStep(script, position);
        switch (step.kind) {
        case ScriptStep::Kind::Transaction:
        case ScriptStep::Kind::LinkedSuite:
        case ScriptStep::Kind::Expectation:
            ++count;
            break;
        case ScriptStep::Kind::PassedOver:
            break;
        case ScriptStep::Kind::End:
        case ScriptStep::Kind::Unrecognized:
            return count;
        }
        if (step.next == 0)
            return count;
        position = step.next;
    }
}

} // namespace larkspur
