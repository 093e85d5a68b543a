#include "protocol/readable_notation.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace larkspur;

namespace {

QByteArray raw(const char* bytes, qsizetype size) {
    return QByteArray(bytes, size);
}

TEST(ReadableNotation, ParsesTagsEscapesAndText) {
    struct Case {
        QString text;
        QByteArray bytes;
    } cases[] = {
        {"", ""},
        {"CHK1  101", "CHK1  101"},
        {"<STX>STS 101<ETX>", "\x02STS 101\x03"},
        {"<ENQ><ACK><NAK>", raw("\x05\x06\x15", 3)},
        {"\\x00\\xff\\xFF\\x3C", raw("\x00\xFF\xFF<", 4)},
        {"a\\\\b", "a\\b"},
        {">", ">"},
        // The check character covers body + ETX, never the STX.
        {"<STX>1<ETX><BCC>", "\0021\0032"},
        // It starts over after each STX, written as a tag or as an escape.
        {"<STX>x<ETX><BCC><STX>1<ETX><BCC>", "\x02x\x03{\0021\0032"},
        {"\\x02"
         "1<ETX><BCC>",
         "\0021\0032"},
        // Without an STX it covers everything before it.
        {"1<ETX><BCC>", "1\0032"},
        {"<BCC>", raw("\x00", 1)},
        // Characters up to U+00FF are their own byte.
        {QString(QChar(0xE9)), "\xE9"},
    };
    for (const Case& c : cases) {
        QString error = "stale";
        EXPECT_EQ(parseReadable(c.text, &error), c.bytes) << c.text.toStdString();
        EXPECT_TRUE(error.isEmpty()) << c.text.toStdString() << ": " << error.toStdString();
    }
}

TEST(ReadableNotation, RefusesBadNotationWithAReason) {
    const QString cases[] = {
        "\\x4", "\\x4G", "\\xZZ", "\\q",    "\\",         "abc\\",  "<FOO>", "<stx>",
        "<STX", "a<b",   "<>",    "< STX>", "<STX>A<ETX", "\\x3C<", "ok\\n", QString(QChar(0x141)),
    };
    for (const QString& text : cases) {
        QString error;
        EXPECT_TRUE(parseReadable(text, &error).isEmpty()) << text.toStdString();
        EXPECT_FALSE(error.isEmpty()) << text.toStdString();
        error.clear();
        EXPECT_TRUE(parseMessage(text, &error).isEmpty()) << text.toStdString();
        EXPECT_FALSE(error.isEmpty()) << text.toStdString();
    }
}

TEST(ReadableNotation, WritesControlBytesAsTagsAndTheRestEscaped) {
    struct Case {
        QByteArray bytes;
        QString text;
    } cases[] = {
        {"\x02STS 101\x03", "<STX>STS 101<ETX>"},
        {raw("\x05\x06\x15", 3), "<ENQ><ACK><NAK>"},
        {raw("\x00\x01\x04\x1F\x7F\x80\xFF", 7), "\\x00\\x01\\x04\\x1F\\x7F\\x80\\xFF"},
        {"a\\b<c>", "a\\x5Cb\\x3Cc>"},
        {" ~", " ~"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(toReadable(c.bytes), c.text) << c.text.toStdString();
}

TEST(ReadableNotation, EveryByteArrayRoundTrips) {
    QByteArray everyByte;
    for (int b = 0; b < 256; ++b)
        everyByte.append(char(b));
    QByteArray reversed = everyByte;
    std::reverse(reversed.begin(), reversed.end());
    for (const QByteArray& bytes : {QByteArray(), everyByte, reversed}) {
        QString error;
        EXPECT_EQ(parseReadable(toReadable(bytes), &error), bytes) << error.toStdString();
    }
}

TEST(ReadableNotation, MessagesAreFramedUnlessTheyFrameThemselvesOrAreBareControls) {
    struct Case {
        QString text;
        QByteArray bytes;
    } cases[] = {
        {"RQINZ     ", "\x02RQINZ     \x03"},
        {"", "\x02\x03"},
        {"<STX>STS<ETX>", "\x02STS\x03"},
        {"\\x02STS\\x03", "\x02STS\x03"},
        {"<STX>1<ETX><BCC>", "\0021\0032"},
        {"<ENQ>", "\x05"},
        {"<ACK><ACK>", "\x06\x06"},
        {"\\x15", "\x15"},
        // A control byte inside text is still text to frame.
        {"A<ACK>", "\002A\x06\x03"},
        {"<ETX>", "\x02\x03\x03"},
    };
    for (const Case& c : cases) {
        QString error = "stale";
        EXPECT_EQ(parseMessage(c.text, &error), c.bytes) << c.text.toStdString();
        EXPECT_TRUE(error.isEmpty()) << c.text.toStdString();
    }
}

} // namespace
