// The script check against the runner itself: what the check says will play is what plays.
#include "common/script_fixture.h"
#include "script/script_check.h"
#include "script/script_reader.h"

using namespace larkspur;
using namespace larkspur::test;
using Level = CheckFinding::Level;
using Verdict = ScriptCheck::Verdict;

namespace {

class Check : public ScriptFixture {
protected:
    static ScriptCheck check(const QByteArray& file, bool errorMode = false) {
        return checkScript(readScript(file), {.errorMode = errorMode});
    }
    static QStringList kinds(const ScriptCheck& c, Level level) {
        QStringList out;
        for (const CheckFinding& f : c.findings)
            if (f.level == level)
                out << QStringLiteral("%1@%2").arg(f.kind).arg(f.line);
        return out;
    }
};

// clang-format off
const QByteArray vmailCheckIn = "\x02" "24001  \x03" "4";
const QByteArray vmailCheckOut = "\x02" "34001  \x03" "5";
// clang-format on

TEST_F(Check, FindsWhatWillNotPlayAsWritten) {
    struct Case {
        const char* name;
        QByteArray file;
        Verdict verdict;
        QStringList rows, warnings, stops;
    } cases[] = {
        // clang-format off
        {"a NAM line two blanks short shifts the next command", "NAM1 Smith                101\r\nMW 1   101\r\n;\r\n", Verdict::Stops, {"1:1 NAM1", "2:3  1  "}, {"misfit@1"}, {"unrecognized@2"}},
        {"a file ending in a command never plays it", "CHK1   101\r\nCHK0   101\r\n", Verdict::Warnings, {"1:1 CHK1"}, {"last-line@2"}, {}},
        {"an unknown expectation leaves the reader mid-line", "WAIT xyz 5\r\nCHK1   101\r\n;\r\n", Verdict::Stops, {"1:1 WAIT", "1:6 xyz "}, {"passed-over@1"}, {"unrecognized@1"}},
        {"a notice recorded for alt is passed over", "NTFY ATL   101 5\r\n;\r\n", Verdict::Stops, {"1:1 NTFY", "1:6 ATL "}, {"alt-notice@1"}, {"unrecognized@1"}},
        {"blanks after the fields start the next command mid-line", "CHK1   101  \r\n;\r\n", Verdict::Stops, {"1:1 CHK1", "1:13 \r\n\x03"}, {"misfit@1"}, {"unrecognized@1"}},
        {"a line holding VMAIL after the first is left out", "CHK1   101\r\nNAM1 VMAIL TEST           101\r\n;\r\n", Verdict::Warnings, {"1:1 CHK1"}, {"vmail-line@2"}, {}},
        {"a voice-mail line without ~ passes over the line after it", "VMAILHIS\r\n" + vmailCheckIn + "\r\n" + vmailCheckOut + "~\r\n" + vmailCheckOut + "~\r\n;\r\n", Verdict::Warnings, {"2:2 2", "4:2 3"}, {"no-tilde@2"}, {}},
        {"a voice-mail line without ~ and none after it stops the run", "VMAILHIS\r\n" + vmailCheckIn + "~\r\n" + vmailCheckOut + "\r\n;\r\n", Verdict::Stops, {"2:2 2", "3:2 3"}, {}, {"no-tilde@3"}},
        {"a voice-mail frame too short for its passcode", "VMAILHIS\r\n\x02" "A4001\x03x~\r\n;\r\n", Verdict::Warnings, {"2:2 A"}, {"field-overrun@2", "field-overrun@2"}, {}},
        {"comments, blank lines and a header are notes only", "VMAILHYATT\r\n; c\r\n; d\r\n\r\n\x02" "24001        \x03" "4~\r\n;\r\n", Verdict::Clean, {"5:2 2"}, {}, {}},
        // clang-format on
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const ScriptCheck result = check(c.file);
        EXPECT_EQ(result.verdict(), c.verdict);
        QStringList rows;
        for (const CheckRow& r : result.rows)
            rows << QStringLiteral("%1:%2 %3").arg(r.line).arg(r.column).arg(r.command);
        EXPECT_EQ(rows, c.rows);
        EXPECT_EQ(kinds(result, Level::Warning), c.warnings);
        EXPECT_EQ(kinds(result, Level::Stop), c.stops);
    }
}

TEST_F(Check, TellsFieldsByColumnAndWhatTheyDrive) {
    const ScriptCheck result = check("NAM4 Jones                  101  102\r\nWAIT STS2   101 x\r\n"
                                     "STE0   101   102\r\nRST3   101\r\n;\r\n");
    QStringList fields;
    for (const CheckRow& row : result.rows) {
        for (const CheckedField& f : row.fields)
            fields << f.describe() + u' ' + f.control;
        fields << QStringLiteral("-> ") + row.drives;
    }
    EXPECT_EQ(fields, QStringList({
                          "name 6-26 \"Jones                \" Text1",
                          "room 27-31 \"  101\" txt_suite_1",
                          "second room 32-36 \"  102\" txt_suite_2",
                          "-> cmd_xfer_name (transfer name)",
                          "item 6-9 \"STS2\" ",
                          "room 11-15 \"  101\" txt_suite_1",
                          "digit 17 \"x\" ",
                          "-> WAIT sts2, up to 5 s (\"x\" is no digit)",
                          "pilot 6-10 \"  101\" txt_ls_pilot",
                          "member 1 12-16 \"  102\" txt_suite_1",
                          "-> linked suite STE0",
                          "room 6-10 \"  101\" txt_suite_1",
                          "-> cmb_restrict (restriction level 3)",
                      }));
}

// One case a rule: the lines the run will log, or what it will send instead of the line.
TEST_F(Check, ForeseesWhatTheTransactionsLogAndSend) {
    const QByteArray name21 = "Smith                ";
    struct Case {
        const char* name;
        QByteArray line;
        bool errorMode;
        QString kind; // the finding on line 1; empty: none
        QStringList refusals, sends;
        QString text; // a part of the finding's text
        int firstColumn = 0, lastColumn = 0;
    } cases[] = {
        // clang-format off
        {"a wake-up time past 59 minutes", "WKP0799  101", false, "refused", {"Invalid Time!", "no valid room number"}, {}, "WKP0 time (columns 4-7) \"0799\": the run logs \"Invalid Time!\" then \"no valid room number\" and sends nothing", 4, 7},
        {"error mode sends the time as it stands", "WKP0799  101", true, "", {}, {"WKP0799  101"}, ""},
        {"a blank room", "CHK1      ", false, "refused", {"no valid room number"}, {}, "CHK1 room (columns 6-10) \"     \": the run logs \"no valid room number\""},
        {"a restriction without a room", "RST3      ", false, "refused", {"No valid room number"}, {}, "\"No valid room number\""},
        {"a blank amount", "LMT1   101      ", false, "refused", {"Invalid Name!", "no valid room number"}, {}, "credit (columns 12-16)", 12, 16},
        {"a blank department", "DPT1" + QByteArray(13, ' ') + "101", false, "refused", {"Invalid Department!", "no valid room number"}, {}, "\"Invalid Department!\""},
        {"a transfer without its room", "NAM4 " + name21 + "  101     ", false, "refused", {"Invalid Transfer Room Number!", "no valid room number"}, {}, "second room (columns 32-36)"},
        {"a transfer sends to both rooms", "NAM4 " + name21 + "  101  102", false, "", {}, {"NAM4 " + name21 + "  101  102", "NAM4 " + name21 + "  102  102"}, ""},
        {"a name with a blank before it", "NAM1  Smith                 101", false, "sends-otherwise", {}, {"NAM1 " + name21 + "  101"}, "NAM1 name (columns 6-26) \" Smith               \" goes out as \"Smith                \"; the run sends \"NAM1 Smith                  101\" where the line holds \"NAM1  Smith                 101\"", 6, 26},
        {"a linked suite without a pilot", "STE0", false, "refused", {"Invalid link suite pilot number!"}, {}, "STE0: the run logs \"Invalid link suite pilot number!\" and sends nothing"},
        {"six members: two dropped", "STE0   101   102   103   104   105   106   107", false, "sends-otherwise", {}, {"STE0   101   102   103   104   105"}, "STE0 past member 4 (columns 38-46) \"106   107\" is not sent; the run sends \"STE0   101   102   103   104   105\"", 38, 46},
        {"a blank member moves the next one up", "STE0   101         103", false, "sends-otherwise", {}, {"STE0   101   103"}, "member 1 (columns 12-16) \"     \" is not sent"},
        {"blanks after the last member are nothing", "STE0   101   102      ", false, "", {}, {"STE0   101   102"}, ""},
        {"error mode runs the members together", "STE0   101   102   103", true, "sends-otherwise", {}, {"STE0   101   102  10"}, "STE0: the run sends \"STE0   101   102  10\" where the line holds \"STE0   101   102   103\""},
        {"an over-long suite line is told in short", "STE0   101" + QByteArray(200, ' ') + "9", false, "sends-otherwise", {}, {"STE0   101"}, "...\" (211 characters)"},
        // clang-format on
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const ScriptCheck result = check(c.line + "\r\n;\r\n", c.errorMode);
        ASSERT_EQ(result.rows.size(), 1);
        const CheckRow& row = result.rows.first();
        EXPECT_EQ(row.refusals, c.refusals);
        EXPECT_EQ(row.sends, c.sends);
        EXPECT_EQ(row.asWritten, c.kind.isEmpty());
        EXPECT_EQ(row.warned, !c.kind.isEmpty());
        EXPECT_EQ(kinds(result, Level::Warning),
                  c.kind.isEmpty() ? QStringList() : QStringList{c.kind + "@1"});
        if (c.kind.isEmpty())
            continue;
        const CheckFinding& finding = result.findings.first();
        EXPECT_TRUE(finding.text.contains(c.text)) << finding.text.toStdString();
        if (c.firstColumn > 0) {
            EXPECT_EQ(QList({finding.firstColumn, finding.lastColumn}),
                      QList({c.firstColumn, c.lastColumn}));
        }
    }
}

TEST_F(Check, ForeseesTheVoiceMailFrame) {
    const struct {
        const char* name;
        QByteArray frame;
        QString text; // a part of the finding on line 2; empty: none
    } cases[] = {
        // clang-format off
        {"a recorded frame is what the run sends", "HIS\r\n\x02" "A4001  1234  \x03" "C", ""},
        {"a mailbox with a blank before it", "HIS\r\n\x02" "2 4001 \x03" "4", "mailbox (columns 3-8) \" 4001 \" goes out as \"4001  \""},
        {"a check character the run does not send", "HIS\r\n\x02" "24001  \x03" "X", "2: the run sends \"<STX>24001  <ETX>4\" where the line holds \"<STX>24001  <ETX>X\""},
        {"HYATT pads what HIS recorded", "HYATT\r\n\x02" "24001  \x03" "4", "the run sends \"<STX>24001        <ETX>4\""},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ScriptCheck result = check("VMAIL" + c.frame + "~\r\n;\r\n");
        ASSERT_EQ(result.rows.size(), 1);
        EXPECT_EQ(kinds(result, Level::Warning),
                  c.text.isEmpty() ? QStringList() : QStringList{"sends-otherwise@2"});
        if (!c.text.isEmpty()) {
            EXPECT_TRUE(result.findings[1].text.contains(c.text))
                << result.findings[1].text.toStdString();
        }
    }
}

// The whole file: bytes an editor hides, named with what to do about them.
TEST_F(Check, NamesTheEncodingAndTheBytesAnEditorHides) {
    QByteArray utf16le, utf16be;
    for (char c : QByteArray("CHK1   101\r\n;\r\n")) {
        utf16le += QByteArray(1, c) + '\0';
        utf16be += QByteArray(1, '\0') + c;
    }
    const struct {
        const char* name;
        QByteArray file;
        QString first; // the first warning, kind@line; empty: none
        QString text;  // a part of it
    } cases[] = {
        // clang-format off
        {"UTF-8 byte order mark", "\xEF\xBB\xBF; hotel\r\nCHK1   101\r\n;\r\n", "utf8-bom@1", "the file starts with a UTF-8 byte order mark (\\xEF\\xBB\\xBF), which the runner reads as three characters at the start of line 1; save the script without the mark"},
        {"UTF-16 with its mark", "\xFF\xFE" + utf16le, "utf16@1", "the file is UTF-16 (low byte first, with its byte order mark \\xFF\\xFE)"},
        {"UTF-16 without a mark", utf16be, "utf16@1", "the file is UTF-16 (high byte first, without a byte order mark): the runner reads one byte a character, so every other character is a NUL byte"},
        {"a NUL in a command", QByteArray("CHK1   1\0001\r\n;\r\n", 15), "nul@1", "holds a NUL byte (\\x00), column 9"},
        {"a lone LF in a CR LF file", "CHK1   101\r\nNAM1 Smith\n                 101\r\n;\r\n", "line-end@2", "ends in column 11 with a lone LF (\\x0A), where the file's other lines end in CR LF"},
        {"a lone CR", "CHK1   101\rCHK0   101\r\n;\r\n", "line-end@1", "lone CR (\\x0D)"},
        {"LF alone ends every line: nothing to tell", "CHK1   101\nCHK0   101\n;\n", "", ""},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ScriptCheck result = check(c.file);
        const QStringList warnings = kinds(result, Level::Warning);
        EXPECT_EQ(warnings.value(0), c.first);
        for (const CheckFinding& f : result.findings)
            if (f.level == Level::Warning) {
                EXPECT_TRUE(f.text.contains(c.text)) << f.text.toStdString();
                break;
            }
    }

    // The first hundred are told one by one, the rest counted.
    QByteArray manyNuls;
    for (int i = 0; i < 150; ++i)
        manyNuls += QByteArray("; \0\r\n", 5);
    const ScriptCheck many = check(manyNuls + "CHK1   101\r\n;\r\n");
    const QStringList warnings = kinds(many, Level::Warning);
    ASSERT_EQ(warnings.size(), 100);
    EXPECT_EQ(warnings.last(), "nul@100");
    EXPECT_TRUE(many.findings[100].text.endsWith(
        "; 50 more lines hold NUL bytes or lone line ends, which the check does not list"))
        << many.findings[100].text.toStdString();
}

TEST_F(Check, TellsFindingsInTheOrderOfTheirLines) {
    // A misfit's finding waits for the commands read from mid-line after it; the notes of the
    // lines between come after it all the same.
    const ScriptCheck result =
        check("CHK1   101\r\nCHK1  101\r\n; note\r\nXCHK1   101\r\nWAIT xyz 5\r\n"
              "WKP0799  101\r\n;\r\n");
    QStringList order;
    for (const CheckFinding& f : result.findings)
        order << QStringLiteral("%1@%2").arg(f.kind).arg(f.line);
    EXPECT_EQ(order, QStringList({"misfit@2", "comment@3", "passed-over@5", "unrecognized@5",
                                  "comment@7"}));
    EXPECT_EQ(result.findings[0].text,
              "CHK1 fills columns 1-10, but the line is 9 characters long: the next command is "
              "read from line 4, column 2; the commands read from mid-line after it: line 4");
}

// The check lists exactly the commands the run plays, stops where the run stops, and foresees
// what each logs and sends; a command it calls as written goes out as the line holds it.
TEST_F(Check, TheRunPlaysRefusesAndSendsWhatTheCheckForesees) {
    const QByteArray name21 = "Jones                ", blanks13(13, ' ');
    // clang-format off
    const QByteArray hotel = "CHK1   101\r\nWKP0799  101\r\nWKP0730  101\r\nLMT1   101      \r\nNAM4 " + name21 + "  101  102\r\n"
        "NAM4 " + name21 + "  101     \r\nNAM1  Jones" + blanks13 + "    101\r\nCHK0 101  \r\nRST5      \r\nDPT1 SALES       101\r\n"
        "LOC3" + blanks13 + "101\r\nSTE0   101   102   103   104   105   106\r\nSTE5   101   104   105\r\n"
        "STE0   101         103\r\nSTE4\r\nSTEB   104   \r\n;\r\n";
    const QByteArray vmail = "VMAILHIS\r\n" + vmailCheckIn + "~\r\n\x02" "2 4001 \x03" "4~\r\n\x02"
                             "74001  4002  \x03" "0~\r\n\x02" "84001    \x03" "=~\r\n;\r\n";
    const QByteArray shifted[] = {
        "; a\r\nCHK1   101\r\n\r\nSTE3   101\r\n;\r\nWAIT STS2   101 1\r\nSTOP\r\n;\r\n",
        "NAM1 Smith                  101\r\nWAIT xyz 5\r\nCHK1   101\r\n;\r\n",
        "VMAILHIS\r\n" + vmailCheckIn + "\r\n" + vmailCheckOut + "~\r\n" + vmailCheckIn + "~\r\n;\r\n",
    };
    // clang-format on
    for (const QByteArray& script : {hotel, vmail, shifted[0], shifted[1], shifted[2]}) {
        for (const bool errorMode : {false, true}) {
            SCOPED_TRACE(script.left(20).toStdString() + (errorMode ? " (error mode)" : ""));
            restart();
            session.choose(Control::chk_error, errorMode);
            QList<int> lines;
            QList<QList<QByteArray>> frames;
            QList<QStringList> refusals;
            const QList<QMetaObject::Connection> connections = {
                QObject::connect(&engine, &ScriptEngine::commandStarted,
                                 [&](const QString&, int line) {
                                     lines << line;
                                     frames.append(QList<QByteArray>());
                                     refusals.append(QStringList());
                                     tcp.written.clear();
                                 }),
                QObject::connect(&engine, &ScriptEngine::commandFinished,
                                 [&] {
                                     for (const QByteArray& w : std::as_const(tcp.written))
                                         if (w.startsWith('\x02'))
                                             frames.last() << w;
                                 }),
                QObject::connect(&session.events(), &SessionEvents::fieldRefused,
                                 [&](const QString& text) { refusals.last() << text; }),
            };
            const auto outcome = play(script);
            for (const QMetaObject::Connection& c : connections)
                QObject::disconnect(c);

            ScriptCheck result = check(script, errorMode);
            result.rows.removeIf([](const CheckRow& row) { return !row.plays; });
            EXPECT_EQ(result.verdict() == Verdict::Stops,
                      outcome == ScriptEngine::RunOutcome::Unrecognized);
            QList<int> listed;
            for (const CheckRow& row : result.rows)
                listed << row.line;
            ASSERT_EQ(listed, lines);
            const bool vmailScript = result.pmsMode == PmsMode::Vmail;
            for (qsizetype i = 0; i < frames.size(); ++i) {
                const CheckRow& row = result.rows[i];
                SCOPED_TRACE(QStringLiteral("line %1").arg(row.line).toStdString());
                QList<QByteArray> foreseen;
                for (const QString& body : row.sends)
                    foreseen << (vmailScript ? body.toLatin1() : "\x02" + body.toLatin1() + "\x03");
                EXPECT_EQ(frames[i], foreseen);
                EXPECT_EQ(refusals[i], row.refusals);
                EXPECT_TRUE(row.asWritten || row.warned);
                if (!row.asWritten || frames[i].isEmpty()) // a wait sends no frame
                    continue;
                // As written: the line from the command on (voice mail: up to its "~"); blanks
                // that end a linked-suite line are nothing.
                const QByteArray line = script.split('\n').value(row.line - 1).chopped(1);
                QByteArray sent = frames[i].first(), holds = line.mid(row.column - 1);
                if (vmailScript) {
                    holds = line.mid(row.column - 2).split('~').first();
                } else if (row.command.startsWith(u"STE")) {
                    sent = sent.mid(1).chopped(1).trimmed();
                    holds = holds.trimmed();
                } else {
                    holds = "\x02" + holds + "\x03";
                }
                EXPECT_EQ(sent, holds);
            }
        }
    }
}

TEST_F(Check, TheExamplesCheckClean) {
    for (const char* name : {"hotel.txt", "vmail.txt"}) {
        QFile f(QStringLiteral(LARKSPUR_SOURCE_DIR "/examples/") + name);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << name;
        const ScriptCheck result = check(f.readAll());
        EXPECT_EQ(result.verdict(), Verdict::Clean) << name;
        EXPECT_GE(result.rows.size(), 9) << name;
    }
}

} // namespace
