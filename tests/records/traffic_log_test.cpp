#include "records/traffic_log.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// Keeps the display as the window would: inserts at the end, a replacing insert takes the place
// of the last character.
class TextDisplay : public TrafficDisplay {
public:
    QString text;
    int replacements = 0;
    void insertAtEnd(const QString& t, bool replaceLast) override {
        if (replaceLast) {
            text.chop(1);
            ++replacements;
        }
        text += t;
    }
    void clear() override { text.clear(); }
};

TEST(ShowDebug, CleansText) {
    struct Case {
        const char* name;
        QString in;
        QString out;
    } cases[] = {
        {"frame loses STX and ETX", QString("\x02STS1   101\x03\r\n"), "STS1   101\r\n"},
        {"tilde between letters dropped", "a~b\r\n", "ab\r\n"},
        {"braces, bar and tilde dropped", "{|}~z\r\n", "z\r\n"},
        {"letter, backspace, letter", "a\bb\r\n", "b\r\n"},
        {"two backspaces eat two", "abc\b\bd\r\n", "ad\r\n"},
        {"lone trailing LF vanishes", "abc\n", "abc"},
        {"lone trailing CR gains LF", "abc\r", "abc\r\n"},
        {"CR CR LF", "a\r\r\n", "a\r\n\r\n"},
        {"LF CR becomes CR LF", "a\n\rb", "a\r\nb"},
        {"tab and DEL dropped", "a\tb\x7f\r\n", "ab\r\n"},
        {"wide characters dropped", QString("a") + QChar(0xE9) + "b\r\n", "ab\r\n"},
        {"backspace is judged before the filter", QString("a\x02\b") + "c", "ac"},
        {"empty", "", ""},
    };
    for (auto& c : cases) {
        TrafficLog log;
        QString text = c.in;
        log.ShowDebug(text);
        EXPECT_EQ(text, c.out) << c.name;
        EXPECT_EQ(log.logText(), c.out) << c.name;
    }
}

TEST(ShowDebug, WritesAllThreeSinks) {
    TrafficLog log;
    TextDisplay display;
    log.setDisplay(&display);
    log.logLine("Sending -->    ENQ");
    log.logLine("Received--> ACK");
    QString noLineEnd = "partial";
    log.ShowDebug(noLineEnd);

    EXPECT_EQ(display.text, QString("Sending -->    ENQ\r\nReceived--> ACK\r\npartial"));
    EXPECT_EQ(log.logText(), display.text);
    EXPECT_EQ(log.logCaret(), display.text.size());
    ASSERT_EQ(log.viewerList().size(), 3);
    EXPECT_EQ(log.viewerList().entry(0), u"Sending -->    ENQ");
    EXPECT_EQ(log.viewerList().entry(1), u"Received--> ACK");
    EXPECT_EQ(log.viewerList().entry(2), u"parti") << "the entry always drops two characters";

    QString one = "x";
    log.ShowDebug(one);
    EXPECT_EQ(log.viewerList().entry(3), u"") << "shorter than two gives an empty entry";
}

// However many leading backspaces, one character shown is replaced, none on an empty display;
// the log text keeps what the display erased. The view's own test shows the replacing.
TEST(ShowDebug, LeadingBackspaceReplacesLastShownCharacter) {
    TrafficLog log;
    TextDisplay display;
    log.setDisplay(&display);
    for (const char* text : {"\bA", "bc", "\b\bX", "q\b\bY"}) {
        QString cleaned = QString::fromLatin1(text);
        log.ShowDebug(cleaned);
    }
    EXPECT_EQ(display.text, QString("AbY"));
    EXPECT_EQ(display.replacements, 2);
    EXPECT_EQ(log.logCaret(), 3);
    EXPECT_EQ(log.logText(), QString("AbcXY"));
}

TEST(ShowDebug, ViewerListAndLogTextShareBytesButNotTheirFate) {
    TrafficLog log;
    log.logLine("one");
    log.viewerList().append(u"from a file");
    log.logLine("two");
    EXPECT_EQ(log.logText(), QString("one\r\ntwo\r\n")) << "a loaded line is no logged text";
    log.viewerList().clear();
    log.logLine("three");
    EXPECT_EQ(log.logText(), QString("one\r\ntwo\r\nthree\r\n")) << "clearing keeps the text";
    ASSERT_EQ(log.viewerList().size(), 1);
    EXPECT_EQ(log.viewerList().entry(0), u"three");
    log.viewerList().append(u"caf\u00e9 \u20ac");
    EXPECT_EQ(log.viewerList().entry(1), u"caf\u00e9 ?") << "Latin-1, one byte each";
}

} // namespace
