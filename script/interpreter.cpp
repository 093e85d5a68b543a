// Plays the script text: one command, then a one-second pause, until its end, a stop or a
// command it does not know. Positions are 1-based, as the script columns are.
#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "core/pause.h"
#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "protocol/readable_notation.h"
#include "script/expectation_waits.h"
#include "script/script_commands.h"
#include "script/script_engine.h"
#include "script/script_reader.h"
#include "transactions/session.h"

namespace larkspur {

namespace {
constexpr float commandPacingSeconds = 1.0f;

// The script text, one byte a character, read at 1-based positions as the script columns are.
struct Cursor {
    const ScriptText& script;
    qsizetype pos;
    QString at(qsizetype from, qsizetype width) const {
        return from < 1 ? QString() : QString::fromLatin1(script.text.mid(from - 1, width));
    }
    // The line around `from`, for reports: up to its CR LF (or "~" in voice-mail scripts).
    QString lineFrom(qsizetype from, bool vmail) const {
        const qsizetype begin = qMax<qsizetype>(0, from - 1);
        qsizetype end = script.text.indexOf(vmail ? "~" : "\r\n", begin);
        if (end < 0)
            end = script.text.indexOf("\r\n", begin);
        if (end < 0)
            end = script.text.size();
        return QString::fromLatin1(script.text.mid(begin, end - begin));
    }
};

} // namespace

void ScriptEngine::restoreButtonsAfterRun() {
    Controls& c = m_session.controls;
    c.setEnabled({Control::cmd_start_script, Control::Xtest}, true);
    c.setEnabled(transactionButtons(), true);
    c.setEnabled({Control::cmd_end_script, Control::StopScript}, false);
}

ScriptEngine::RunOutcome ScriptEngine::interpret(const ScriptText& script) {
    Session& s = m_session;
    const bool vmail = script.pmsMode != PmsMode::Hotel;
    const QByteArray& text = script.text;
    Cursor cursor{script, vmail ? 2 : 1};
    for (;;) {
        // Closing the console asks for a stop too: a wait it ended has cleared stopScript, and
        // every later wait would return at once, so a Continuous script would never end.
        // A lost link stops the script as a disconnect does.
        if (s.stopScript() || s.link.interrupted()) {
            s.clearScriptStop();
            s.log.logLine(QStringLiteral("Script cancelled..."));
            return RunOutcome::Cancelled;
        }
        for (Field room : roomFields)
            s.fields.setText(room, QString());

        const qsizetype start = cursor.pos;
        QString word;
        if (vmail) {
            word = cursor.at(cursor.pos, 1);
            cursor.pos += 1;
            if (word.isEmpty())
                word = end_of_text();
        } else {
            word = cursor.at(cursor.pos, 4);
            cursor.pos += 5;
        }

        if (const ScriptCommand* command = findScriptCommand(word)) {
            const qsizetype lineStart = vmail ? start - 1 : start;
            Q_EMIT commandStarted(cursor.lineFrom(lineStart, vmail), script.fileLineAt(lineStart));
            const qsizetype base = vmail ? cursor.pos : start;
            for (const FieldColumn& copy : command->copies)
                s.fields.setText(copy.field, cursor.at(base + copy.column - 1, copy.width));
            command->press(s);
            if (vmail) {
                // The next line starts past "~", CR, LF and its own framing character. Without
                // a "~" there is no next command to find: the line is not one the runner knows.
                const qsizetype tilde = text.indexOf('~', cursor.pos - 1);
                if (tilde < 0) {
                    Q_EMIT commandFinished();
                    const QString line = cursor.lineFrom(lineStart, vmail);
                    return stopOnUnrecognized(
                        toReadable(line.mid(1).toLatin1()), script.fileLineAt(lineStart),
                        QStringLiteral("a voice-mail line without \"~\" after its frame: ") +
                            toReadable(line.toLatin1()));
                }
                cursor.pos = tilde + 1 + 4;
            } else {
                const FieldColumn& last = command->copies.last();
                cursor.pos = base + last.column - 1 + last.width + 2;
            }
            Q_EMIT commandFinished();
        } else if (!vmail && word.startsWith(u"STE") && word.size() == 4 &&
                   QStringLiteral("012345678AB").contains(word.at(3))) {
            Q_EMIT commandStarted(cursor.lineFrom(start, vmail), script.fileLineAt(start));
            playLinkedSuite(text, start, word, cursor.pos);
            Q_EMIT commandFinished();
        } else if (!vmail && (word == u"NTFY" || word == u"WAIT")) {
            const QString head = cursor.at(start + 5, 4);
            const ExpectationItem* e = findExpectationByScriptHead(head);
            // An expectation it does not know is passed over, and the next command is read
            // from where this one's expectation began.
            if (e) {
                Q_EMIT commandStarted(cursor.lineFrom(start, vmail), script.fileLineAt(start));
                qsizetype digitAt = start + 5 + 4;
                if (e->roomOffset() > 0) {
                    s.fields.setText(Field::txt_suite_1, cursor.at(start + 5 + e->roomOffset(), 5));
                    digitAt = start + 5 + e->roomOffset() + 5 + 1;
                }
                runExpectationWait(s, word == u"WAIT" ? WaitKind::Plain : WaitKind::WithNotice,
                                   e->item, cursor.at(digitAt, 1));
                cursor.pos = digitAt + 1 + 2;
                Q_EMIT commandFinished();
            }
        } else if (word == end_of_text()) {
            if (!Continuous) {
                if (s.errors.errorCount() < 1)
                    s.operatorInterface.notify(QStringLiteral("Script file completed"));
                else
                    s.operatorInterface.notify(
                        QStringLiteral("Script file ended!") + carriage_return() +
                        QStringLiteral(" There were %1 Errors").arg(s.errors.errorCount()) +
                        carriage_return() + QStringLiteral("View Log for details"));
                restoreButtonsAfterRun();
                return RunOutcome::Completed;
            }
            cursor.pos = 1;
        } else {
            return stopOnUnrecognized(
                word, script.fileLineAt(start),
                QStringLiteral("unrecognized command \"%1\"").arg(toReadable(word.toLatin1())));
        }
        pause_seconds(s.pump, commandPacingSeconds);
    }
}

ScriptEngine::RunOutcome ScriptEngine::stopOnUnrecognized(const QString& command, int fileLine,
                                                          const QString& why) {
    Session& s = m_session;
    Q_EMIT unrecognizedCommand(fileLine, why);
    s.operatorInterface.notify(QStringLiteral("Command: ") + command);
    s.errors.recordError(Time_of_error(s.pump.currentDateTime()) +
                             QStringLiteral("-> Script File Corrupt:\n\n\n"),
                         false);
    s.log.logLine(QStringLiteral("Script file error! Unrecognized command"));
    restoreButtonsAfterRun();
    s.log.logLine(QStringLiteral("Script Cancelled!"));
    return RunOutcome::Unrecognized;
}

void ScriptEngine::playLinkedSuite(const QByteArray& text, qsizetype start, const QString& word,
                                   qsizetype& pos) {
    Session& s = m_session;
    // Pilot in columns 6-10, then up to four members, each after one blank, to the line's end.
    qsizetype lineEnd = text.indexOf("\r\n", start - 1) + 1; // 1-based CR
    if (lineEnd <= 0)
        lineEnd = text.size() + 1;
    const auto upToLineEnd = [&](qsizetype from, qsizetype width) {
        return from >= lineEnd
                   ? QString()
                   : QString::fromLatin1(text.mid(from - 1, qMin(width, lineEnd - from)));
    };
    s.fields.setText(Field::txt_ls_pilot, upToLineEnd(start + 5, 5));
    const Field members[] = {Field::txt_suite_1, Field::txt_suite_2, Field::txt_suite_3,
                             Field::txt_suite_4};
    for (int k = 0; k < 4; ++k)
        s.fields.setText(members[k], upToLineEnd(start + 11 + 6 * k, 5));
    const QString code = word + QLatin1Char(' ');
    if (word == u"STE5")
        s.send_linked_suite_pilot(code);
    else
        s.send_linked_suite(code);
    pos = lineEnd + 2;
}

} // namespace larkspur
