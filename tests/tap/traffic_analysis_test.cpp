// What the tap makes of the traffic it relays, in virtual time: each message with its answer and
// how long it took, retries and time-outs, frames split anywhere, garbage, sessions, statistics.
#include "common/qt_printers.h"
#include "tap_analysis.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::tap;
using namespace larkspur::tap::test;

namespace {

constexpr Side pms = Side::Pms;
constexpr Side pbx = Side::Pbx;

TEST(TrafficAnalysis, EachMessageWithItsAnswerAndHowLongItTook) {
    TapAnalysis tap;
    tap.send(0, pms, "<ENQ>");
    tap.send(2, pbx, "<ACK>");
    tap.send(10, pms, "<STX>CHK1   101<ETX>");
    tap.send(14, pbx, "<ACK>");
    tap.send(1500, pbx, "<STX>STS2   101<ETX>");
    tap.send(1503, pms, "<ACK>");
    tap.send(2000, pms, "<STX>STE1   101   102 <ETX>");
    tap.send(2001, pbx, "<ACK>");
    tap.run();
    EXPECT_EQ(
        tap.lines,
        QStringList({
            "10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
            "10:00:00.002 PBX>PMS <ACK>   ; ACK to the ENQ bid after 2 ms",
            "10:00:00.010 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
            "10:00:00.014 PBX>PMS <ACK>   ; ACK to check-in room 101 after 4 ms",
            "10:00:01.500 PBX>PMS <STX>STS2   101<ETX>   ; STS2 room 101",
            "10:00:01.503 PMS>PBX <ACK>   ; ACK to STS2 room 101 after 3 ms",
            "10:00:02.000 PMS>PBX <STX>STE1   101   102 <ETX>   ; linked suite STE1 pilot 101",
            "10:00:02.001 PBX>PMS <ACK>   ; ACK to linked suite STE1 pilot 101 after 1 ms",
        }));
    EXPECT_EQ(tap.row("ENQ"), "1/1/0/0 2/2/2");
    EXPECT_EQ(tap.row("check-in"), "1/1/0/0 4/4/4");
    EXPECT_EQ(tap.row("PBX STS2"), "1/1/0/0 3/3/3");
    EXPECT_EQ(tap.row("linked suite"), "1/1/0/0 1/1/1");
}

TEST(TrafficAnalysis, RetriesRefusalsAndSilenceAreMarked) {
    TapAnalysis tap;
    tap.send(0, pms, "<ENQ>");
    tap.send(1, pbx, "<NAK>");
    tap.send(100, pms, "<ENQ>");
    tap.send(101, pbx, "<ACK>");
    tap.send(200, pms, "<STX>CHK0   101<ETX>");
    tap.send(5300, pms, "<STX>CHK0   101<ETX>");
    tap.send(5301, pbx, "<NAK>");
    tap.send(5400, pms, "<STX>CHK0   101<ETX>");
    tap.send(5401, pbx, "<ACK>");
    tap.send(6000, pbx, "<ACK>");
    tap.send(7000, pms, "<STX>CHK0   101<ETX>");
    tap.send(7002, pbx, "<ACK>");
    tap.run();
    EXPECT_EQ(tap.lines,
              QStringList({
                  "10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
                  "10:00:00.001 PBX>PMS <NAK>   ; NAK to the ENQ bid after 1 ms",
                  "10:00:00.100 PMS>PBX <ENQ>   ; ENQ bid, retry 2",
                  "10:00:00.101 PBX>PMS <ACK>   ; ACK to the ENQ bid after 1 ms",
                  "10:00:00.200 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101",
                  "10:00:05.200 -- no answer within 5 s to check-out room 101",
                  "10:00:05.300 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101, retry 2",
                  "10:00:05.301 PBX>PMS <NAK>   ; NAK to check-out room 101 after 1 ms",
                  "10:00:05.400 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101, retry 3",
                  "10:00:05.401 PBX>PMS <ACK>   ; ACK to check-out room 101 after 1 ms",
                  "10:00:06.000 PBX>PMS <ACK>   ; ACK, answering nothing waiting",
                  // Acknowledged before: the same frame again is a new transaction.
                  "10:00:07.000 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101",
                  "10:00:07.002 PBX>PMS <ACK>   ; ACK to check-out room 101 after 2 ms",
              }));
    EXPECT_EQ(tap.row("ENQ"), "2/1/1/0 1/1/1");
    EXPECT_EQ(tap.row("check-out"), "4/2/1/1 1/1/2");
}

TEST(TrafficAnalysis, ANewBidBeforeTheAnswerLeavesTheLastUnanswered) {
    TapAnalysis tap;
    tap.send(0, pms, "<ENQ>");
    tap.send(1000, pms, "<ENQ>");
    tap.send(1001, pbx, "<ACK>");
    tap.run();
    EXPECT_EQ(tap.lines, QStringList({
                             "10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
                             "10:00:01.000 -- no answer to the ENQ bid before the next ENQ",
                             "10:00:01.000 PMS>PBX <ENQ>   ; ENQ bid, retry 2",
                             "10:00:01.001 PBX>PMS <ACK>   ; ACK to the ENQ bid after 1 ms",
                         }));
    EXPECT_EQ(tap.row("ENQ"), "2/1/0/1 1/1/1");
}

// Where a frame splits, and how its pieces are spaced, never changes what the trace shows.
TEST(TrafficAnalysis, AFrameSplitAnywhereIsOneMessage) {
    const struct {
        PmsMode mode;
        const char* frame;
        const char* shown;
    } frames[] = {
        {PmsMode::Hotel, "<STX>NAM1 Smith                  101<ETX>", "add name room 101"},
        {PmsMode::Vmail, "<STX>A4001  1234  <ETX><BCC>",
         "voice mail A check-in with passcode mailbox 4001 passcode 1234, check character right"},
    };
    for (const auto& f : frames) {
        const QByteArray bytes = parseReadable(QString::fromLatin1(f.frame), nullptr);
        const QString line =
            QStringLiteral("PMS>PBX %1   ; %2").arg(toReadable(bytes), QLatin1String(f.shown));
        for (qsizetype cut = 1; cut < bytes.size(); ++cut) {
            TapAnalysis tap({.mode = f.mode});
            tap.sendBytes(0, pms, bytes.left(cut));
            tap.sendBytes(60, pms, bytes.mid(cut));
            tap.run();
            EXPECT_EQ(tap.lines.filter("PMS>PBX"), QStringList{"10:00:00.060 " + line})
                << f.frame << " cut at " << cut;
        }
        TapAnalysis trickled({.mode = f.mode});
        for (qsizetype i = 0; i < bytes.size(); ++i)
            trickled.sendBytes(i * 20, pms, bytes.mid(i, 1));
        trickled.run();
        const QStringList shown = trickled.lines.filter("PMS>PBX");
        EXPECT_EQ(shown.size(), 1) << f.frame << ": " << shown.join('\n').toStdString();
        EXPECT_TRUE(shown.value(0).endsWith(line)) << f.frame;
    }
}

TEST(TrafficAnalysis, VoiceMailFramesAreNamedAndTheirCheckCharacterJudged) {
    TapAnalysis tap({.mode = PmsMode::Vmail});
    tap.send(0, pms, "<STX>24001  <ETX><BCC>");
    tap.send(3, pbx, "<ACK>");
    tap.send(100, pms, "<STX>74001  4002  <ETX>X");
    tap.send(102, pbx, "<NAK>");
    tap.send(200, pbx, "<STX>4  40010201<ETX><BCC>");
    tap.run();
    EXPECT_EQ(
        tap.lines,
        QStringList({
            "10:00:00.000 PMS>PBX <STX>24001  <ETX>4   ; voice mail 2 check-in mailbox 4001, "
            "check character right",
            "10:00:00.003 PBX>PMS <ACK>   ; ACK to voice mail 2 check-in mailbox 4001 after 3 ms",
            "10:00:00.100 PMS>PBX <STX>74001  4002  <ETX>X   ; voice mail 7 move mailbox "
            "mailbox 4001 to 4002, check character wrong",
            "10:00:00.102 PBX>PMS <NAK>   ; NAK to voice mail 7 move mailbox mailbox 4001 to "
            "4002 after 2 ms",
            "10:00:00.200 PBX>PMS <STX>4  40010201<ETX>1   ; voice mail 4, check character right",
            "10:00:05.200 -- no answer within 5 s to voice mail 4",
        }));
    EXPECT_EQ(tap.row("voice mail 2 check-in"), "1/1/0/0 3/3/3");
    EXPECT_EQ(tap.row("PBX voice mail 4"), "1/0/0/1 -1/-1/-1");
}

TEST(TrafficAnalysis, WhatIsNoMessageIsShownAsItCame) {
    TapAnalysis tap;
    tap.send(0, pms, "hello\\x0D\\x0A");
    tap.send(10, pms, "<STX>CHK1 <STX>CHK1   101<ETX>");    // a frame started over
    tap.send(20, pbx, "<STX>STS2   1");                     // whose end never comes
    tap.send(300, pbx, "\\xFF\\xFB\\x01<ACK>garbage<ETX>"); // after the frame gap
    tap.run();
    EXPECT_EQ(tap.lines, QStringList({
                             "10:00:00.000 PMS>PBX hello\\x0D\\x0A   ; stray bytes",
                             "10:00:00.010 PMS>PBX <STX>CHK1    ; unfinished frame",
                             "10:00:00.010 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
                             "10:00:00.020 PBX>PMS <STX>STS2   1   ; unfinished frame",
                             "10:00:00.300 PBX>PMS \\xFF\\xFB\\x01   ; stray bytes",
                             "10:00:00.300 PBX>PMS <ACK>   ; ACK to check-in room 101 after 290 ms",
                             "10:00:00.300 PBX>PMS garbage<ETX>   ; stray bytes",
                         }));
}

// A monitor hears each side on a port of its own, and an answer's port may hand it over first.
TEST(TrafficAnalysis, OnAMonitorAnAnswerHeardFirstStillAnswers) {
    TapAnalysis tap({.learn = true, .monitor = true});
    tap.send(0, pbx, "<ACK>");
    tap.send(0, pms, "<ENQ>");
    tap.send(100, pbx, "<ACK>");
    tap.send(130, pms, "<STX>CHK1   101<ETX>");
    tap.send(1000, pbx, "<NAK>"); // nothing comes for it
    tap.run();
    EXPECT_EQ(tap.lines,
              QStringList({
                  "10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
                  "10:00:00.000 PBX>PMS <ACK>   ; ACK to the ENQ bid, heard 0 ms before it",
                  "10:00:00.130 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
                  "10:00:00.100 PBX>PMS <ACK>   ; ACK to check-in room 101, heard 30 ms before it",
                  "10:00:01.000 PBX>PMS <NAK>   ; NAK, answering nothing waiting",
              }));
    EXPECT_EQ(tap.row("ENQ"), "1/1/0/0 0/0/0");
    EXPECT_EQ(tap.row("check-in"), "1/1/0/0 0/0/0");
    EXPECT_EQ(tap.learned, QStringList{"CHK1   101"});
}

TEST(TrafficAnalysis, ControlBytesInAFieldReachNoTerminal) {
    TapAnalysis tap;
    tap.send(0, pms, "<STX>CHK1  \\x07\\x1B1<ETX>");
    tap.send(1, pbx, "<ACK>");
    tap.send(10, pbx, "<STX>STS2 \\x0D\\x0A 01<ETX>");
    tap.send(11, pms, "<ACK>");
    tap.run();
    EXPECT_EQ(tap.lines.filter("<STX>"),
              QStringList({"10:00:00.000 PMS>PBX <STX>CHK1  \\x07\\x1B1<ETX>   ; check-in room "
                           "\\x07\\x1B1",
                           "10:00:00.010 PBX>PMS <STX>STS2 \\x0D\\x0A 01<ETX>   ; STS2 room "
                           "\\x0D\\x0A 01"}));
}

// Every byte relayed shows up in the trace once, in order, whatever it is and however it is cut.
TEST(TrafficAnalysis, NoByteIsLostFromTheTrace) {
    for (const PmsMode mode : {PmsMode::Hotel, PmsMode::Vmail}) {
        QRandomGenerator random(42);
        TapAnalysis tap({.mode = mode});
        QByteArray sent[2];
        qint64 at = 0;
        for (int chunk = 0; chunk < 400; ++chunk) {
            // Mostly control bytes and frame bounds, so frames start, end and break off.
            QByteArray bytes;
            const int size = random.bounded(1, 200);
            for (int i = 0; i < size; ++i) {
                const char pick[] = {2, 3, 5, 6, 21, 'A', '1', ' ', '\r'};
                const char any = char(random.bounded(256));
                // No ';', so the first "   ; " of a line ends its notation.
                bytes += random.bounded(4) == 0 ? (any == ';' ? ':' : any)
                                                : pick[random.bounded(int(sizeof pick))];
            }
            const Side from = random.bounded(2) ? pms : pbx;
            sent[int(from)] += bytes;
            tap.sendBytes(at, from, bytes);
            at += random.bounded(0, 150);
        }
        tap.run();
        QByteArray traced[2];
        for (const QString& line : std::as_const(tap.lines)) {
            if (line.mid(13, 2) == u"--")
                continue;
            const Side from = line.mid(13, 7) == u"PMS>PBX" ? pms : pbx;
            const QString notation = line.mid(21, line.indexOf(QStringLiteral("   ; ")) - 21);
            QString error;
            traced[int(from)] += parseReadable(notation, &error);
            ASSERT_TRUE(error.isEmpty()) << line.toStdString();
        }
        EXPECT_TRUE(traced[0] == sent[0]) << int(mode);
        EXPECT_TRUE(traced[1] == sent[1]) << int(mode);
    }
}

TEST(TrafficAnalysis, ASessionsEndClosesWhatWaitsAndShowsWhatWasHeld) {
    TapAnalysis tap;
    tap.open(0, "PMS 127.0.0.1:40000 connected");
    tap.send(10, pms, "<STX>CHK1   101<ETX>");
    tap.send(20, pbx, "<STX>STS");
    tap.close(30, "the PMS hung up");
    tap.run();
    EXPECT_EQ(tap.lines, QStringList({
                             "10:00:00.000 -- PMS 127.0.0.1:40000 connected",
                             "10:00:00.010 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
                             "10:00:00.020 PBX>PMS <STX>STS   ; unfinished frame",
                             "10:00:00.030 -- no answer to check-in room 101: the session ended",
                             "10:00:00.030 -- the PMS hung up",
                         }));
    EXPECT_EQ(tap.row("check-in"), "1/0/0/1 -1/-1/-1");
}

TEST(TrafficAnalysis, WhatTheTraceCannotHoldIsCountedAndSaid) {
    TapAnalysis tap({.capacity = 1000});
    // Relayed in one turn of the event loop, before the trace has had a slice.
    tap.pump.schedule(0, [&] {
        for (int i = 0; i < 30; ++i)
            tap.backlog.passed(pms, QByteArray(100, 'x'));
    });
    tap.send(10, pbx, "<ACK>");
    tap.run();
    const qint64 untraced = tap.backlog.untraced(pms);
    EXPECT_GT(untraced, 0);
    EXPECT_EQ(tap.backlog.untraced(pbx), 0);
    // What fitted is traced.
    EXPECT_EQ(tap.lines.filter("stray bytes").join("").count('x') + untraced, 3000);
    EXPECT_EQ(tap.lines.filter(" -- ").join('\n'),
              QStringLiteral("10:00:00.000 -- %1 bytes PMS>PBX relayed but not traced: the "
                             "trace fell behind")
                  .arg(untraced));
    EXPECT_TRUE(tap.lines.last().endsWith("<ACK>   ; ACK, answering nothing waiting"));
}

TEST(TrafficAnalysis, TheTraceIsHandedOverASliceAtATime) {
    VirtualEventPump pump;
    qsizetype largest = 0, total = 0, pieces = 0;
    TraceBacklog backlog(pump, [&](const TraceEntry& entry) {
        largest = qMax(largest, entry.bytes.size());
        total += entry.bytes.size();
        ++pieces;
    });
    backlog.passed(pms, QByteArray(64 * 1024, 'x'));
    pump.processEvents();
    EXPECT_EQ(total, 0); // nothing traced while the answer may still be on its way
    pump.waitForEvent(TraceBacklog::quietMs);
    pump.processEvents();
    EXPECT_EQ(total, 64 * 1024);
    EXPECT_LE(largest, TraceBacklog::sliceBytes);
    EXPECT_GT(pieces, 64 * 1024 / TraceBacklog::sliceBytes);
}

} // namespace
