#include "sim/sim_options.h"

#include <gtest/gtest.h>

#include <vector>

using namespace larkspur::sim;

namespace {

// Qt's list comparison hands memcmp a null pointer for two empty lists, which the undefined
// behaviour sanitizer reports; a vector compares the same without it.
std::vector<Answer> listed(const QList<Answer>& answers) {
    return {answers.begin(), answers.end()};
}

SimOptions parsed(const QStringList& arguments) {
    const ParsedArguments result = parseSimArguments(arguments);
    EXPECT_TRUE(result.options.has_value())
        << arguments.join(' ').toStdString() << ": " << result.error.toStdString();
    return result.options.value_or(SimOptions{});
}

TEST(SimOptions, DefaultsListenOnLoopbackAndAckEverything) {
    const SimOptions o = parsed({});
    EXPECT_TRUE(o.listen);
    EXPECT_EQ(o.listenAddress, QHostAddress(QHostAddress::LocalHost));
    EXPECT_EQ(o.listenPort, 15374);
    EXPECT_FALSE(o.pty);
    EXPECT_EQ(o.mode, Mode::Hotel);
    EXPECT_EQ(o.onEnq, Answer::Ack);
    EXPECT_EQ(o.onFrame, Answer::Ack);
    EXPECT_FALSE(o.echoOffer);
    EXPECT_FALSE(o.help);
    EXPECT_TRUE(o.at.isEmpty());
    EXPECT_TRUE(o.after.isEmpty());
}

TEST(SimOptions, ListenAndPtyCombine) {
    struct Case {
        QStringList arguments;
        bool listen;
        QHostAddress address;
        quint16 port;
        bool pty;
        QString link;
    } cases[] = {
        {{"--listen", "0.0.0.0:0"}, true, QHostAddress("0.0.0.0"), 0, false, ""},
        {{"--listen", "[::1]:65535"}, true, QHostAddress::LocalHostIPv6, 65535, false, ""},
        // A pty alone means a serial console only.
        {{"--pty"}, false, QHostAddress::LocalHost, 15374, true, ""},
        {{"--pty", "--mode", "VMAIL"}, false, QHostAddress::LocalHost, 15374, true, ""},
        {{"--pty", "--listen", "127.0.0.1:9"}, true, QHostAddress::LocalHost, 9, true, ""},
        {{"--listen", "127.0.0.1:9", "--pty", "l"}, true, QHostAddress::LocalHost, 9, true, "l"},
    };
    for (const Case& c : cases) {
        const SimOptions o = parsed(c.arguments);
        const std::string name = c.arguments.join(' ').toStdString();
        EXPECT_EQ(o.listen, c.listen) << name;
        EXPECT_EQ(o.listenAddress, c.address) << name;
        EXPECT_EQ(o.listenPort, c.port) << name;
        EXPECT_EQ(o.pty, c.pty) << name;
        EXPECT_EQ(o.ptyLink, c.link) << name;
    }
}

TEST(SimOptions, ReadsAnswersModeAndFlags) {
    const SimOptions o = parsed({"--mode", "VMAIL", "--on-enq", "silent", "--on-frame", "nak",
                                 "--echo-offer", "--trace", "t.log"});
    EXPECT_EQ(o.mode, Mode::Vmail);
    EXPECT_EQ(o.onEnq, Answer::Silent);
    EXPECT_EQ(o.onFrame, Answer::Nak);
    EXPECT_TRUE(o.echoOffer);
    EXPECT_EQ(o.traceFile, "t.log");
    EXPECT_TRUE(parsed({"--help"}).help);
    EXPECT_TRUE(parsed({"-h"}).help);
}

TEST(SimOptions, MessagesKeepTheirOrderAndAreFramed) {
    const SimOptions o = parsed({"--at", "0.05", "RQINZ     ", "--after", "STS", "0", "<ENQ>",
                                 "--at", "2", "<STX>A<ETX>", "--after", "<ACK>M", "1.5", "MW"});
    ASSERT_EQ(o.at.size(), 2);
    EXPECT_DOUBLE_EQ(o.at[0].seconds, 0.05);
    EXPECT_EQ(o.at[0].bytes, "\x02RQINZ     \x03");
    EXPECT_DOUBLE_EQ(o.at[1].seconds, 2);
    EXPECT_EQ(o.at[1].bytes, "\x02"
                             "A\x03");
    ASSERT_EQ(o.after.size(), 2);
    EXPECT_EQ(o.after[0].match, "STS");
    EXPECT_DOUBLE_EQ(o.after[0].seconds, 0);
    EXPECT_EQ(o.after[0].bytes, "\x05");
    // MATCH is notation but never framed: it is compared with the text inside a frame.
    EXPECT_EQ(o.after[1].match, "\x06M");
    EXPECT_DOUBLE_EQ(o.after[1].seconds, 1.5);
    EXPECT_EQ(o.after[1].bytes, "\x02MW\x03");
}

TEST(SimOptions, BadArgumentsAreRefusedWithAReason) {
    const QStringList cases[] = {
        {"--listen"},
        {"--listen", "127.0.0.1"},
        {"--listen", "127.0.0.1:"},
        {"--listen", "127.0.0.1:65536"},
        {"--listen", "127.0.0.1:-1"},
        {"--listen", "nowhere:80"},
        {"--listen", "::1:80"},
        {"--mode", "hotel"},
        {"--mode"},
        {"--on-enq", "yes"},
        {"--on-frame"},
        {"--at", "1"},
        {"--at", "-1", "X"},
        {"--at", "soon", "X"},
        {"--at", "nan", "X"},
        {"--at", "inf", "X"},
        {"--at", "1e7", "X"},
        {"--at", "1", "\\xZZ"},
        {"--after", "STS", "0"},
        {"--after", "<BAD>", "0", "X"},
        {"--after", "STS", "x", "X"},
        {"--after", "STS", "0", "<ETX"},
        {"--trace"},
        {"--line-speed", "0"},
        {"--line-speed", "fast"},
        {"--split", "0"},
        {"--split", "1.5"},
        {"--split-gap", "-0.1"},
        {"--verbose"},
        {"stray"},
        {"--pty", "a", "b"},
    };
    for (const QStringList& arguments : cases) {
        const ParsedArguments result = parseSimArguments(arguments);
        EXPECT_FALSE(result.options.has_value()) << arguments.join(' ').toStdString();
        EXPECT_FALSE(result.error.isEmpty()) << arguments.join(' ').toStdString();
    }
}

TEST(SimOptions, AnswerListsRepeatTheirLastAnswer) {
    struct Case {
        QStringList arguments;
        QList<Answer> firstEnq;
        Answer enq;
        QList<Answer> firstFrame;
        Answer frame;
        double delay;
    } cases[] = {
        {{"--on-enq", "nak,silent,ack"},
         {Answer::Nak, Answer::Silent},
         Answer::Ack,
         {},
         Answer::Ack,
         0},
        {{"--on-frame", "nak,nak"}, {}, Answer::Ack, {Answer::Nak}, Answer::Nak, 0},
        // A later option replaces the whole list.
        {{"--on-enq", "nak,ack", "--on-enq", "silent"}, {}, Answer::Silent, {}, Answer::Ack, 0},
        {{"--answer-delay", "0.02"}, {}, Answer::Ack, {}, Answer::Ack, 0.02},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const SimOptions o = parsed(c.arguments);
        EXPECT_EQ(listed(o.firstEnqAnswers), listed(c.firstEnq));
        EXPECT_EQ(o.onEnq, c.enq);
        EXPECT_EQ(listed(o.firstFrameAnswers), listed(c.firstFrame));
        EXPECT_EQ(o.onFrame, c.frame);
        EXPECT_DOUBLE_EQ(o.answerDelaySeconds, c.delay);
    }
    const QStringList wrong[] = {{"--on-enq", "ack,"},       {"--on-frame", ",nak"},
                                 {"--on-frame", "ack,,nak"}, {"--on-enq", "ack nak"},
                                 {"--answer-delay", "-0.1"}, {"--answer-delay"},
                                 {"--answer-delay", "20ms"}};
    for (const QStringList& arguments : wrong)
        EXPECT_FALSE(parseSimArguments(arguments).options) << arguments.join(' ').toStdString();
}

} // namespace
