#include "protocol/frame.h"
#include "protocol/vmail_frame.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

QString stx() {
    return QString(QChar(ctl::STX));
}
QString etx() {
    return QString(QChar(ctl::ETX));
}

TEST(Frame, PadFieldAppendsBlanksButNeverCuts) {
    struct Case {
        QString in;
        qint16 width;
        QString out;
    } cases[] = {
        {"ab", 6, "ab    "},     {"abcdefg", 6, "abcdefg"},
        {"abcdef", 6, "abcdef"}, {"", 2, "  "},
        {"x", 0, "x"},           {"x", -3, "x"},
    };
    for (auto& c : cases) {
        QString text = c.in;
        EXPECT_EQ(pad_field(text, c.width), c.out) << c.in.toStdString();
        EXPECT_EQ(text, c.out) << "the text is padded in place";
    }
}

TEST(Frame, CrcIsXorOfLowBytes) {
    struct Case {
        QString text;
        int code;
    } cases[] = {
        {"", 0},
        {"1" + etx(), 49 ^ 3},
        {QString("AB"), 'A' ^ 'B'},
        {QString(QChar(0x0141)) + "A", 0x41 ^ 'A'}, // only the low byte of a wide character counts
        {QString(QChar(0xFF)) + QChar(0x01), 0xFE},
    };
    for (auto& c : cases) {
        const QString crc = CRC(c.text);
        ASSERT_EQ(crc.size(), 1);
        EXPECT_EQ(crc.at(0).unicode(), c.code);
    }
}

TEST(Frame, TimeOfErrorPutsDateBeforeTimeWithOneBlank) {
    const QDateTime t(QDate(2026, 3, 4), QTime(5, 6, 7));
    EXPECT_EQ(Time_of_error(t), QString("2026-03-04 05:06:07"));
}

// The frame around each body, with its check character, is the worked example's test.
TEST(VmailFrame, BodyLayoutByCodeAndProtocol) {
    struct Case {
        QString code, f1, f2, protocol, body;
        bool recognized = true;
    } cases[] = {
        {"1", "", "", "HIS", "1"},
        {"1", "", "", "HYATT", "1            "},
        {"2", " 4001 ", "", "HIS", "24001  "},
        {"3", "4001", "ignored", "HIS", "34001  "},
        {"6", "4001", "", "HYATT", "64001        "},
        {"7", " 4001", " 12 ", "HIS", "74001   12   "},
        {"A", "4001", "1234", "HIS", "A4001  1234  "},
        {"B", "4001", "1234", "HIS", "B4001  1234  "},
        {"D", "4001", "1234", "HIS", "D4001  1234  "},
        {"8", "4001", "1", "HYATT", "84001  1     "},
        {"9", "4001", "12", "HIS", "94001  12"},
        // widths are minimums: a long field shifts what follows, HYATT never shortens
        {"9", "4001234", "123", "HIS", "94001234123"},
        {"7", "40012345", "1234567", "HYATT", "7400123451234567"},
        {"7", "400123", "1234", "HYATT", "74001231234  "},
        // field one loses blanks only, not other white space
        {"2", " \t4001 ", "", "HIS", "2\t4001 "},
        {"7", "  4001  ", " 12 ", "HIS", "74001   12   "},
        // an unknown code is flagged and still framed; codes are matched exactly, case included
        {"Z", "4001", "12", "HYATT", "Z            ", false},
        {"a", "4001", "", "HIS", "a", false},
    };
    for (auto& c : cases) {
        SCOPED_TRACE((c.code + " " + c.protocol).toStdString());
        bool recognized = !c.recognized;
        const QString frame =
            build_vmail_message(c.code, c.f1, c.f2, *protocolNamed(c.protocol), recognized);
        EXPECT_EQ(frame.chopped(2), stx() + c.body);
        EXPECT_EQ(frame.right(2).left(1), etx());
        EXPECT_EQ(recognized, c.recognized);
    }
}

TEST(VmailFrame, WorkedExampleCheckCharacter) {
    bool recognized = false;
    EXPECT_EQ(build_vmail_message("1", "", "", Protocol::His, recognized), "\0021\0032");
    // '2' ^ '4' ^ '0' ^ '0' ^ '1' ^ ' ' ^ ' ' ^ ETX
    EXPECT_EQ(build_vmail_message("2", " 4001 ", "", Protocol::His, recognized),
              "\00224001  \0034");
}

} // namespace
