// The option table every program parses its command line with, and the usage and help it prints.
#include "core/option_table.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

struct Given {
    bool flag = false;
    double seconds = -1;
    double delay = -1;
    QString name;
};

OptionTable table(Given& g, const QString& program = QStringLiteral("prog")) {
    return OptionTable(
        program,
        {flagOption("--flag", g.flag, "a switch"),
         valueOption("--timeout", "SECONDS", takeSeconds(g.seconds, 0, 60),
                     "how long\nat the most"),
         valueOption("--delay", "SECONDS", takeSeconds(g.delay, 0, 60, true), "how long to wait"),
         valueOption("--an-option-of-a-long-name", "NAME", takeText(g.name), "a name")},
        QStringLiteral("SCRIPT"));
}

TEST(OptionTable, ReadsAndRefusesNamingTheOption) {
    const struct {
        QStringList arguments;
        QString error;
    } cases[] = {
        {{"--flag", "--timeout", "2.5", "--delay", "0", "x.txt"}, ""},
        {{"--timeout", "0"}, "--timeout: \"0\" is not a number of seconds above 0 and up to 60"},
        {{"--delay", "60.5"}, "--delay: \"60.5\" is not a number of seconds from 0 and up to 60"},
        {{"--an-option-of-a-long-name", " "},
         "--an-option-of-a-long-name: wants a value, not an empty text"},
        {{"--timeout"}, "--timeout needs SECONDS"},
        {{"--bogus"}, "unknown option --bogus"},
    };
    for (const auto& c : cases) {
        Given g;
        const OptionTable::Parsed parsed = table(g).parse(c.arguments);
        EXPECT_EQ(parsed.error, c.error) << c.arguments.join(' ').toStdString();
        if (c.error.isEmpty()) {
            EXPECT_TRUE(g.flag);
            EXPECT_EQ(g.seconds, 2.5);
            EXPECT_EQ(g.delay, 0);
            EXPECT_EQ(parsed.operands, QStringList{"x.txt"});
        }
    }
    Given g;
    EXPECT_TRUE(table(g).parse({"-h"}).help);
}

TEST(OptionTable, UsageWrapsAtAHundredColumnsAndHelpLinesUpTheTexts) {
    Given g;
    const OptionTable t = table(g);
    // 101 columns with "[--help]": wrapped before it; one program letter less, 100: not.
    EXPECT_EQ(t.usage(), "usage: prog [--flag] [--timeout SECONDS] [--delay SECONDS] "
                         "[--an-option-of-a-long-name NAME]\n"
                         "            [--help] SCRIPT\n");
    EXPECT_EQ(table(g, "pro").usage(), "usage: pro [--flag] [--timeout SECONDS] [--delay SECONDS] "
                                       "[--an-option-of-a-long-name NAME] [--help]\n"
                                       "           SCRIPT\n");
    EXPECT_EQ(t.help("About it.", "After it."), t.usage() +
                                                    "\n"
                                                    "About it.\n"
                                                    "  --flag                a switch\n"
                                                    "  --timeout SECONDS     how long\n"
                                                    "                        at the most\n"
                                                    "  --delay SECONDS       how long to wait\n"
                                                    "  --an-option-of-a-long-name NAME\n"
                                                    "                        a name\n"
                                                    "  --help                show this and exit\n"
                                                    "\n"
                                                    "After it.");
}

} // namespace
