#include "transactions/field_validation.h"

#include "common/recording_operator.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(VerifyString, JustifiesOrRejectsByLengthOnly) {
    struct Case {
        QString text;
        qint16 width;
        QString just;
        QString out;
    } cases[] = {
        // clang-format off
        {"101", 5, "R", "  101"}, {"Smith", 21, "L", "Smith                "}, {"12345", 5, "R", "12345"}, {"123456", 5, "R", "NotValid"},
        {"", 5, "R", "NotValid"}, {"", 5, "X", "NotValid"}, {"101", 5, "X", ""}, {"101", 5, "r", ""}, {"     ", 5, "R", "     "},
        {"a b!", 10, "L", "a b!      "}, {"LOBBY", 10, "L", "LOBBY     "}, {"500", 5, "R", "  500"}, {"x", 0, "R", "NotValid"},
        // clang-format on
    };
    for (auto& c : cases)
        EXPECT_EQ(verify_string(c.text, c.width, c.just), c.out)
            << c.text.toStdString() << "/" << c.width << c.just.toStdString();
}

TEST(VerifyMember, RightJustifiesWithTrailingBlank) {
    struct Case {
        QString text;
        QString out;
    } cases[] = {
        {"12", "   12 "}, {"", ""}, {"123456", "NotValid"}, {"12345", "12345 "}, {" ", "      "},
    };
    for (auto& c : cases)
        EXPECT_EQ(verify_member(c.text, 5), c.out) << c.text.toStdString();
}

TEST(GetWakeupTime, ChecksDigitByDigit) {
    struct Case {
        QString in;
        bool valid;
    } cases[] = {
        {"0730", true}, {"2959", true},   {"2400", true},  {"0000", true},   {"1959", true},
        {"730", false}, {"07:30", false}, {"3000", false}, {"0760", false},  {"1260", false},
        {"", false},    {"07a0", false},  {"073 ", false}, {"07300", false},
    };
    for (auto& c : cases) {
        QString time = c.in;
        const QString result = get_wakeup_time(time);
        const QString expected = c.valid ? c.in : QString("NotValid");
        EXPECT_EQ(result, expected) << c.in.toStdString();
        EXPECT_EQ(time, expected) << "the caller's text is overwritten";
    }
}

TEST(FilterPrintable, TellsEachCodeAndDropsBlanksAndHighCharacters) {
    test::RecordingOperator op;
    const QString in = QString("a b") + QChar(127) + QChar(0xE9) + QChar(2) + "~";
    EXPECT_EQ(filter_printable(in, op), QString("ab") + QChar(2) + "~");
    EXPECT_EQ(op.notices, QStringList({"97", "32", "98", "127", "233", "2", "126"}));
}

} // namespace
