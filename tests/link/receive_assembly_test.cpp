#include "core/virtual_event_pump.h"
#include "link/receive_assembly.h"
#include "link/serial_line.h"
#include "protocol/readable_notation.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

// One read of the transport, in the readable notation, at a virtual time.
struct Read {
    qint64 atMs;
    const char* bytes;
};

// What the receiver was handed: "<ms> <readable>" per message.
QStringList assemble(bool vmail, const QList<Read>& reads, int gapMs = 100) {
    VirtualEventPump pump;
    ReceiveAssembly assembly(pump);
    assembly.setCheckCharacter(vmail);
    assembly.setFrameGapMs(gapMs);
    QStringList handed;
    QObject::connect(&assembly, &ReceiveAssembly::message, [&](const QByteArray& bytes) {
        handed << QStringLiteral("%1 %2").arg(pump.elapsedMs()).arg(toReadable(bytes));
    });
    for (const Read& read : reads) {
        pump.schedule(read.atMs, [&assembly, read] {
            assembly.take(parseReadable(QString::fromLatin1(read.bytes), nullptr));
        });
    }
    while (pump.hasPendingDeliveries()) {
        pump.waitForEvent(60'000);
        pump.processEvents();
    }
    return handed;
}

// A frame written one byte at a time, `stepMs` apart, from `startMs`.
QList<Read> trickle(const char* readable, qint64 startMs, qint64 stepMs) {
    static QList<QByteArray> keep; // the reads point into these
    const QByteArray bytes = parseReadable(QString::fromLatin1(readable), nullptr);
    QList<Read> reads;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        keep.append(toReadable(bytes.mid(i, 1)).toLatin1());
        reads.append({startMs + i * stepMs, keep.last().constData()});
    }
    return reads;
}

TEST(ReceiveAssembly, ReadsBecomeMessages) {
    const struct {
        const char* name;
        bool vmail;
        QList<Read> reads;
        QStringList handed;
    } cases[] = {
        {"a whole frame at once", false, {{5, "<STX>STS1   101<ETX>"}}, {"5 <STX>STS1   101<ETX>"}},
        {"a frame trickled at 1200 baud",
         false,
         trickle("<STX>STS1   101<ETX>", 0, 8),
         {"88 <STX>STS1   101<ETX>"}},
        {"a frame in two segments 20 ms apart",
         false,
         {{0, "<STX>STS1"}, {20, "   101<ETX>"}},
         {"20 <STX>STS1   101<ETX>"}},
        {"a lone ACK, then a lone NAK",
         false,
         {{0, "<ACK>"}, {3, "<NAK>"}},
         {"0 <ACK>", "3 <NAK>"}},
        {"an ACK and a frame that came together stay one read",
         false,
         {{0, "<ACK><STX>STS1   101<ETX>"}},
         {"0 <ACK><STX>STS1   101<ETX>"}},
        {"what comes before an unfinished frame is handed over at once",
         false,
         {{0, "<ACK><STX>STS"}, {30, "1   101<ETX>"}},
         {"0 <ACK>", "30 <STX>STS1   101<ETX>"}},
        {"a complete frame is answered before the next one is complete",
         false,
         {{0, "<STX>STS1   101<ETX><STX>STS1"}, {16, "   102<ETX>"}},
         {"0 <STX>STS1   101<ETX>", "16 <STX>STS1   102<ETX>"}},
        {"unframed text is one read each",
         false,
         {{0, "hello"}, {1, " world"}},
         {"0 hello", "1  world"}},
        {"a frame whose end never comes, after the gap of silence",
         false,
         {{0, "<STX>ST"}, {50, "S1"}},
         {"150 <STX>STS1"}},
        {"pauses shorter than the gap keep the frame together",
         false,
         {{0, "<STX>S"}, {90, "T"}, {180, "S"}, {270, "<ETX>"}},
         {"270 <STX>STS<ETX>"}},
        {"after a lost frame, what follows is read afresh",
         false,
         {{0, "<STX>AB"}, {300, "CD<ETX>"}, {301, "<ACK>"}},
         {"100 <STX>AB", "300 CD<ETX>", "301 <ACK>"}},
        {"an STX inside a frame keeps the whole as one read",
         false,
         {{0, "<STX>AB<STX>CD"}, {10, "<ETX>"}},
         {"10 <STX>AB<STX>CD<ETX>"}},
        {"a voice-mail frame ends with its check character",
         true,
         {{0, "<STX>4  4001 01 00<ETX>"}, {10, "\\x30"}},
         {"10 <STX>4  4001 01 00<ETX>0"}},
        {"a voice-mail status frame trickled at 9600 baud",
         true,
         trickle("<STX>4  4001 02 01<ETX><BCC>", 0, 1),
         {"15 <STX>4  4001 02 01<ETX>1"}},
        {"in hotel mode the byte after the ETX is a read of its own",
         false,
         {{0, "<STX>4  4001<ETX>"}, {10, "\\x30"}},
         {"0 <STX>4  4001<ETX>", "10 0"}},
        {"a stray ETX does not hold what follows",
         false,
         {{0, "AB<ETX>"}, {5, "<STX>STS1   101<ETX>"}},
         {"0 AB<ETX>", "5 <STX>STS1   101<ETX>"}},
        {"a stray ETX in voice-mail mode waits for no check character",
         true,
         {{0, "<ETX>"}, {5, "<ACK>"}},
         {"0 <ETX>", "5 <ACK>"}},
        {"a voice-mail frame without its check character, after the gap",
         true,
         {{0, "<STX>RQINZ     <ETX>"}},
         {"100 <STX>RQINZ     <ETX>"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(assemble(c.vmail, c.reads), c.handed) << c.name;
}

TEST(ReceiveAssembly, TheGapIsSettable) {
    EXPECT_EQ(assemble(false, {{0, "<STX>A"}}, 250), QStringList{"250 <STX>A"});
    EXPECT_EQ(assemble(false, {{0, "<STX>A"}, {200, "<ETX>"}}, 250),
              QStringList{"200 <STX>A<ETX>"});
}

TEST(ReceiveAssembly, AFrameThatNeverEndsIsNotHeldBeyondItsCap) {
    VirtualEventPump pump;
    ReceiveAssembly assembly(pump);
    QList<QByteArray> handed;
    QObject::connect(&assembly, &ReceiveAssembly::message,
                     [&](const QByteArray& bytes) { handed.append(bytes); });
    assembly.take("\x02" + QByteArray(WireScanner::maxFrameBytes, 'x'));
    ASSERT_EQ(handed.size(), 1);
    EXPECT_EQ(handed[0].size(), WireScanner::maxFrameBytes + 1);
    EXPECT_FALSE(assembly.holding());
}

TEST(ReceiveAssembly, DefaultGapFollowsTheLineSpeed) {
    const struct {
        int given;
        bool tcp;
        const char* line;
        int gapMs;
    } cases[] = {
        {0, true, "1200,N,8,2", 100},   // TCP: no line speed
        {0, false, "9600,N,8,1", 100},  // 20 characters take 21 ms
        {0, false, "1200,N,8,2", 184},  // 8 data bits, 2 stop bits: 183.3 ms
        {0, false, "300,E,7,1", 667},   // with parity, 10 bits a character
        {0, false, "fast,N,8,1", 100},  // a line that cannot be read
        {250, false, "300,N,8,1", 250}, // set by the operator
    };
    for (const auto& c : cases)
        EXPECT_EQ(frameGapMs(c.given, c.tcp, c.line), c.gapMs) << c.line;
}

} // namespace
