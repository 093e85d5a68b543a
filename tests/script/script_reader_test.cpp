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
        {"one line plays nothing", "CHK1   101\r\n", "HOTEL", "HYATT", "\x03"},
        {"last line dropped", "CHK1   101\r\nCHK0   101\r\n", "HOTEL", "HYATT",
         "CHK1   101\r\n\x03"},
        {"last line dropped without its line end", "CHK1   101\r\nCHK0   101", "HOTEL", "HYATT",
         "CHK1   101\r\n\x03"},
        {"trailing comment lets the last command play", "CHK1   101\r\nCHK0   101\r\n;end\r\n",
         "HOTEL", "HYATT", "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"comments and blank lines left out", "; c\r\n\r\n   \r\nCHK1   101\r\n;x\r\n", "HOTEL",
         "HYATT", "CHK1   101\r\n\x03"},
        {"blank then semicolon is kept", " ;x\r\nCHK1   101\r\n;\r\n", "HOTEL", "HYATT",
         " ;x\r\nCHK1   101\r\n\x03"},
        {"vmail header with HIS",
         "VMAILHIS\r\n\x02"
         "24001  \x03x~\r\n;\r\n",
         "VMAIL", "HIS",
         "\x02"
         "24001  \x03x~\r\n\x03"},
        {"vmail header with HYATT", "VMAILHYATT\r\n;\r\n", "VMAIL", "HYATT", "\x03"},
        {"vmail anywhere in the first line", "; VMAIL test\r\n;\r\n", "VMAIL", "HIS", "\x03"},
        {"lower-case vmail is a kept hotel line", "vmail\r\nCHK1   101\r\n", "HOTEL", "HYATT",
         "vmail\r\n\x03"},
        {"later VMAIL lines are left out", "CHK1   101\r\nxVMAILx\r\nCHK0   101\r\n;\r\n", "HOTEL",
         "HYATT", "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"unix line ends", "CHK1   101\nCHK0   101\n;\n", "HOTEL", "HYATT",
         "CHK1   101\r\nCHK0   101\r\n\x03"},
        {"empty file", "", "HOTEL", "HYATT", "\x03"},
        {"leading blanks kept", "  CHK1\r\n;\r\n", "HOTEL", "HYATT", "  CHK1\r\n\x03"},
    };
    for (auto& c : cases) {
        const ScriptText s = readScript(c.file);
        EXPECT_EQ(pmsModeName(s.pmsMode), c.mode) << c.name;
        EXPECT_EQ(protocolName(s.protocolType), c.protocol) << c.name;
        EXPECT_EQ(s.text, c.text) << c.name;
    }
}

} // namespace

namespace {

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

} // namespace
