// The script check against the runner itself: what the check says will play is what plays.
#include "common/script_fixture.h"
#include "script/script_check.h"
#include "script/script_reader.h"

#include <QSignalSpy>

using namespace larkspur;
using namespace larkspur::test;
using Level = CheckFinding::Level;
using Verdict = ScriptCheck::Verdict;

namespace {

class Check : public ScriptFixture {
protected:
    static ScriptCheck check(const QByteArray& file) { return checkScript(readScript(file)); }
    static QStringList kinds(const ScriptCheck& c, Level level) {
        QStringList out;
        for (const CheckFinding& f : c.findings)
            if (f.level == level)
                out << QStringLiteral("%1@%2").arg(f.kind).arg(f.line);
        return out;
    }
    static QStringList rows(const ScriptCheck& c) {
        QStringList out;
        for (const CheckRow& r : c.rows)
            out << QStringLiteral("%1:%2 %3").arg(r.line).arg(r.column).arg(r.command);
        return out;
    }
};

const QByteArray vmailCheckIn = "\x02"
                                "24001  \x03"
                                "4";
const QByteArray vmailCheckOut = "\x02"
                                 "34001  \x03"
                                 "4";

TEST_F(Check, FindsWhatWillNotPlayAsWritten) {
    struct Case {
        const char* name;
        QByteArray file;
        Verdict verdict;
        QStringList rows;
        QStringList warnings;
        QStringList stops;
    } cases[] = {
        {"a NAM line two blanks short shifts the next command",
         "NAM1 Smith                101\r\nMW 1   101\r\n;\r\n",
         Verdict::Stops,
         {"1:1 NAM1", "2:3  1  "},
         {"misfit@1"},
         {"unrecognized@2"}},
        {"a file ending in a command never plays it",
         "CHK1   101\r\nCHK0   101\r\n",
         Verdict::Warnings,
         {"1:1 CHK1"},
         {"last-line@2"},
         {}},
        {"an unknown expectation leaves the reader mid-line",
         "WAIT xyz 5\r\nCHK1   101\r\n;\r\n",
         Verdict::Stops,
         {"1:1 WAIT", "1:6 xyz "},
         {"passed-over@1"},
         {"unrecognized@1"}},
        {"a notice recorded for alt is passed over",
         "NTFY ATL   101 5\r\n;\r\n",
         Verdict::Stops,
         {"1:1 NTFY", "1:6 ATL "},
         {"alt-notice@1"},
         {"unrecognized@1"}},
        {"a line with blanks after its fields starts the next command mid-line",
         "CHK1   101  \r\n;\r\n",
         Verdict::Stops,
         {"1:1 CHK1", "1:13 \r\n\x03"},
         {"misfit@1"},
         {"unrecognized@1"}},
        {"a line holding VMAIL after the first is left out",
         "CHK1   101\r\nNAM1 VMAIL TEST           101\r\n;\r\n",
         Verdict::Warnings,
         {"1:1 CHK1"},
         {"vmail-line@2"},
         {}},
        {"a voice-mail line without ~ passes over the line after it",
         "VMAILHIS\r\n" + vmailCheckIn + "\r\n" + vmailCheckOut + "~\r\n" + vmailCheckOut +
             "~\r\n;\r\n",
         Verdict::Warnings,
         {"2:2 2", "4:2 3"},
         {"no-tilde@2"},
         {}},
        {"a voice-mail line without ~ and none after it stops the run",
         "VMAILHIS\r\n" + vmailCheckIn + "~\r\n" + vmailCheckOut + "\r\n;\r\n",
         Verdict::Stops,
         {"2:2 2", "3:2 3"},
         {},
         {"no-tilde@3"}},
        {"a voice-mail frame too short for its passcode",
         "VMAILHIS\r\n\x02"
         "A4001\x03x~\r\n;\r\n",
         Verdict::Warnings,
         {"2:2 A"},
         {"field-overrun@2", "field-overrun@2"},
         {}},
        {"comments, blank lines and a header are notes only",
         "VMAILHYATT\r\n; c\r\n; d\r\n\r\n" + vmailCheckIn + "~\r\n;\r\n",
         Verdict::Clean,
         {"5:2 2"},
         {},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const ScriptCheck result = check(c.file);
        EXPECT_EQ(result.verdict(), c.verdict);
        EXPECT_EQ(rows(result), c.rows);
        EXPECT_EQ(kinds(result, Level::Warning), c.warnings);
        EXPECT_EQ(kinds(result, Level::Stop), c.stops);
    }
}

TEST_F(Check, TellsFieldsByColumnAndWhatTheyDrive) {
    const ScriptCheck result = check("NAM4 Jones                  101  102\r\nWAIT STS2   101 x\r\n"
                                     "STE0   101   102\r\nRST3   101\r\n;\r\n");
    ASSERT_EQ(result.rows.size(), 4);
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

TEST_F(Check, ShiftedCommandsAreNamedWithTheirCause) {
    // One blank short: every later command starts a column late until one fits again.
    const ScriptCheck result = check("CHK1  101\r\nCHK1   101\r\nCHK1   101\r\n;\r\n");
    EXPECT_EQ(rows(result), QStringList({"1:1 CHK1", "2:2 HK1 "}));
    ASSERT_EQ(result.findings.size(), 3);
    EXPECT_EQ(result.findings[0].text,
              "CHK1 fills columns 1-10, but the line is 9 characters long: the next command is "
              "read from line 2, column 2; the commands read from mid-line after it: line 2");
    EXPECT_TRUE(result.rows[1].warned);
    EXPECT_TRUE(result.rows[1].stops);
}

TEST_F(Check, ListsExactlyTheCommandsTheRunnerPlays) {
    const QByteArray scripts[] = {
        "; a\r\nCHK1   101\r\n\r\nSTE3   101\r\n;\r\nWAIT STS2   101 1\r\nSTOP\r\n;\r\n",
        "NAM1 Smith                  101\r\nWAIT xyz 5\r\nCHK1   101\r\n;\r\n",
        "VMAILHIS\r\n" + vmailCheckIn + "\r\n" + vmailCheckOut + "~\r\n" + vmailCheckIn +
            "~\r\n;\r\n",
        "WKP0730  101\r\nLMT1   101   500\r\nDPT1 SALES       101\r\nWKP3000  101\r\n;\r\n",
    };
    for (const QByteArray& script : scripts) {
        SCOPED_TRACE(script.toStdString());
        restart();
        QSignalSpy started(&engine, &ScriptEngine::commandStarted);
        const auto outcome = play(script);
        QList<int> played;
        for (const QVariantList& signal : std::as_const(started))
            played << signal[1].toInt();
        const ScriptCheck result = check(script);
        QList<int> listed;
        for (const CheckRow& row : result.rows)
            if (row.plays)
                listed << row.line;
        EXPECT_EQ(listed, played);
        EXPECT_EQ(result.verdict() == Verdict::Stops,
                  outcome == ScriptEngine::RunOutcome::Unrecognized);
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
