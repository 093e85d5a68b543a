#include "common/qt_printers.h"
#include "script/script_reader.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(ScriptReader, KeepsDropsAndDecidesTheMode) {
    struct Case {
        const char* name;
        QByteArray file;
        QString mode, protocol, text;
    } cases[] = {
        // clang-format off
        {"one line plays nothing", "CHK1   101\r\n", "HOTEL", "HYATT", "\x03"},
        {"last line dropped", "CHK1   101\r\nCHK0   101\r\n", "HOTEL", "HYATT", "CHK1   101\r\n\x03"},
        {"last line dropped without its line end", "CHK1   101\r\nCHK0   101", "HOTEL", "HYATT", "CHK1   101\r\n\x03"},
        {"trailing comment lets the last command play", "CHK1   101\r\nCHK0   101\r\n;end\r\n", "HOTEL", "HYATT", "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"comments and blank lines left out", "; c\r\n\r\n   \r\nCHK1   101\r\n;x\r\n", "HOTEL", "HYATT", "CHK1   101\r\n\x03"},
        {"blank then semicolon is kept", " ;x\r\nCHK1   101\r\n;\r\n", "HOTEL", "HYATT", " ;x\r\nCHK1   101\r\n\x03"},
        {"vmail header with HIS", "VMAILHIS\r\n\x02" "24001  \x03x~\r\n;\r\n", "VMAIL", "HIS", "\x02" "24001  \x03x~\r\n\x03"},
        {"vmail header with HYATT", "VMAILHYATT\r\n;\r\n", "VMAIL", "HYATT", "\x03"},
        {"vmail anywhere in the first line", "; VMAIL test\r\n;\r\n", "VMAIL", "HIS", "\x03"},
        {"lower-case vmail is a kept hotel line", "vmail\r\nCHK1   101\r\n", "HOTEL", "HYATT", "vmail\r\n\x03"},
        {"later VMAIL lines are left out", "CHK1   101\r\nxVMAILx\r\nCHK0   101\r\n;\r\n", "HOTEL", "HYATT", "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"unix line ends", "CHK1   101\nCHK0   101\n;\n", "HOTEL", "HYATT", "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"empty file", "", "HOTEL", "HYATT", "\x03"},
        {"leading blanks kept", "  CHK1\r\n;\r\n", "HOTEL", "HYATT", "  CHK1\r\n\x03"},
        // clang-format on
    };
    for (auto& c : cases) {
        const ScriptText s = readScript(c.file);
        EXPECT_EQ(pmsModeName(s.pmsMode), c.mode) << c.name;
        EXPECT_EQ(protocolName(s.protocolType), c.protocol) << c.name;
        EXPECT_EQ(s.text, c.text) << c.name;
    }
}

TEST(ScriptReader, KeepsOnlyWhatIsMoreThanBlanks) {
    // Only character 32 is a blank: a tab is text, and a line holding one is a command.
    EXPECT_EQ(readScript("\t\r\nCHK1   101\r\n;\r\n").text, "\t\r\nCHK1   101\r\n\x03");
    EXPECT_EQ(readScript("  \t \r\n;\r\n").text, "  \t \r\n\x03");
    EXPECT_EQ(readScript("     \r\n;\r\n").text, "\x03");
}

TEST(ScriptReader, KnowsTheFileLineOfEveryKeptLine) {
    const ScriptText s = readScript("; header\r\n"   // 1
                                    "CHK1   101\r\n" // 2
                                    "\r\n"           // 3
                                    ";\r\n"          // 4
                                    "CHK0   101\r\n" // 5
                                    "MW 1   101\r\n" // 6
                                    ";end\r\n");     // 7
    ASSERT_EQ(s.text, "CHK1   101\r\nCHK0   101\r\nMW 1   101\r\n\x03");
    const struct {
        qsizetype position;
        int fileLine;
    } cases[] = {{1, 2}, {10, 2}, {12, 2}, {13, 5}, {25, 6}, {37, 0}, {5, 2}, {30, 6}};
    for (const auto& c : cases)
        EXPECT_EQ(s.fileLineAt(c.position), c.fileLine) << c.position;
}

TEST(ScriptReader, KeepsRunsOfLeftOutLinesAsOne) {
    const ScriptText s =
        readScript("; a\r\n; b\r\n\r\n  \r\nCHK1   101\r\n; c\r\nxVMAILx\r\nCHK0   101\r\n");
    using Reason = ScriptText::LeftOut::Reason;
    ASSERT_EQ(s.leftOut.size(), 5);
    const struct {
        int first, last;
        Reason reason;
    } runs[] = {{1, 2, Reason::Comment},
                {3, 4, Reason::Blank},
                {6, 6, Reason::Comment},
                {7, 7, Reason::HoldsVmail},
                {8, 8, Reason::LastLine}};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(s.leftOut[i].fileLine, runs[i].first) << i;
        EXPECT_EQ(s.leftOut[i].lastLine, runs[i].last) << i;
        EXPECT_EQ(s.leftOut[i].reason, runs[i].reason) << i;
    }
    EXPECT_EQ(s.leftOutLine(7), "xVMAILx");
    EXPECT_EQ(s.leftOutLine(8), "CHK0   101");
    EXPECT_EQ(s.leftOutLine(6), QByteArray()) << "a comment's text is not kept";
}

TEST(ScriptReader, TellsTheEncodingByTheFirstBytes) {
    using Encoding = ScriptText::Encoding;
    const struct {
        QByteArray file;
        Encoding encoding;
        bool marked;
    } cases[] = {
        {"CHK1   101\r\n;\r\n", Encoding::Bytes, false},
        {"\xEF\xBB\xBF;\r\n", Encoding::Utf8WithMark, false},
        {QByteArray("\xFF\xFE;\0\r\0\n\0", 8), Encoding::Utf16LE, true},
        {QByteArray("\xFE\xFF\0;\0\r\0\n", 8), Encoding::Utf16BE, true},
        {QByteArray("C\0H\0K\0001\0", 8), Encoding::Utf16LE, false},
        {QByteArray("\0C\0H\0K\0001", 8), Encoding::Utf16BE, false},
        // A NUL here and there is no UTF-16.
        {QByteArray("CHK1\0  101\r\n;\r\n", 15), Encoding::Bytes, false},
        {QByteArray("\0", 1), Encoding::Bytes, false},
    };
    for (const auto& c : cases) {
        const ScriptText s = readScript(c.file);
        EXPECT_EQ(s.encoding, c.encoding) << c.file.toHex().toStdString();
        EXPECT_EQ(s.utf16Marked, c.marked) << c.file.toHex().toStdString();
    }
}

TEST(ScriptReader, FindsNulBytesAndLoneLineEnds) {
    using Kind = ScriptText::Oddity::Kind;
    const ScriptText s = readScript(QByteArray("CHK1   101\r\n"    // 1
                                               "CH\0K1 \0 101\r\n" // 2: two NULs from column 3
                                               "NAM1 Smith\n"      // 3: a lone LF in column 11
                                               "CHK0   101\r"      // 4: a lone CR in column 11
                                               ";\r\n",
                                               50));
    ASSERT_EQ(s.oddities.size(), 3);
    EXPECT_EQ(s.oddityCount, 3);
    const struct {
        Kind kind;
        int line, column, count;
    } expected[] = {{Kind::Nul, 2, 3, 2}, {Kind::LoneLf, 3, 11, 1}, {Kind::LoneCr, 4, 11, 1}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(s.oddities[i].kind, expected[i].kind) << i;
        EXPECT_EQ(s.oddities[i].fileLine, expected[i].line) << i;
        EXPECT_EQ(s.oddities[i].column, expected[i].column) << i;
        EXPECT_EQ(s.oddities[i].count, expected[i].count) << i;
    }
    // Where every line ends in LF, or in CR, none is lone.
    EXPECT_TRUE(readScript("CHK1   101\nCHK0   101\n;\n").oddities.isEmpty());
    EXPECT_TRUE(readScript("CHK1   101\rCHK0   101\r;\r").oddities.isEmpty());
    // In UTF-16 every other byte is a NUL: the encoding says it all.
    EXPECT_TRUE(readScript(QByteArray("\xFF\xFE;\0\r\0\n\0", 8)).oddities.isEmpty());
}

} // namespace
