// What the tap makes of the traffic it relays, in virtual time: each message with its answer and
// how long it took, retries and time-outs, garbage, sessions, statistics. The end-to-end tests
// play the relay itself; frames in pieces are the assembly's own test.
#include "common/qt_printers.h"
#include "tap_analysis.h"

#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::tap;
using namespace larkspur::tap::test;

namespace {

constexpr Side pms = Side::Pms;
constexpr Side pbx = Side::Pbx;

struct Send {
    qint64 atMs;
    Side from;
    const char* readable;
};

TEST(TrafficAnalysis, EachMessageWithItsAnswerRetriesAndSilence) {
    const struct {
        const char* name;
        TapSetup setup;
        QList<Send> sends;
        QStringList lines;
        QStringList rows; // "type: sent/acked/refused/timeout min/median/max"
    } cases[] = {
        {"silence, refusal, retries; a frame acknowledged before is a new transaction",
         {},
         {{200, pms, "<STX>CHK0   101<ETX>"},
          {5300, pms, "<STX>CHK0   101<ETX>"},
          {5301, pbx, "<NAK>"},
          {5400, pms, "<STX>CHK0   101<ETX>"},
          {5401, pbx, "<ACK>"},
          {6000, pbx, "<ACK>"},
          {7000, pms, "<STX>CHK0   101<ETX>"},
          {7002, pbx, "<ACK>"}},
         {"10:00:00.200 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101",
          "10:00:05.200 -- no answer within 5 s to check-out room 101",
          "10:00:05.300 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101, retry 2",
          "10:00:05.301 PBX>PMS <NAK>   ; NAK to check-out room 101 after 1 ms",
          "10:00:05.400 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101, retry 3",
          "10:00:05.401 PBX>PMS <ACK>   ; ACK to check-out room 101 after 1 ms",
          "10:00:06.000 PBX>PMS <ACK>   ; ACK, answering nothing waiting",
          "10:00:07.000 PMS>PBX <STX>CHK0   101<ETX>   ; check-out room 101",
          "10:00:07.002 PBX>PMS <ACK>   ; ACK to check-out room 101 after 2 ms"},
         {"check-out: 4/2/1/1 1/1/2"}},
        {"a new bid before the answer leaves the last unanswered",
         {},
         {{0, pms, "<ENQ>"}, {1000, pms, "<ENQ>"}, {1001, pbx, "<ACK>"}},
         {"10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
          "10:00:01.000 -- no answer to the ENQ bid before the next ENQ",
          "10:00:01.000 PMS>PBX <ENQ>   ; ENQ bid, retry 2",
          "10:00:01.001 PBX>PMS <ACK>   ; ACK to the ENQ bid after 1 ms"},
         {"ENQ: 2/1/0/1 1/1/1"}},
        {"voice-mail frames are named and their check character judged",
         {.mode = PmsMode::Vmail},
         {{0, pms, "<STX>24001  <ETX><BCC>"},
          {3, pbx, "<ACK>"},
          {100, pms, "<STX>74001  4002  <ETX>X"},
          {102, pbx, "<NAK>"},
          {200, pbx, "<STX>4  40010201<ETX><BCC>"}},
         {"10:00:00.000 PMS>PBX <STX>24001  <ETX>4   ; voice mail 2 check-in mailbox 4001, "
          "check character right",
          "10:00:00.003 PBX>PMS <ACK>   ; ACK to voice mail 2 check-in mailbox 4001 after 3 ms",
          "10:00:00.100 PMS>PBX <STX>74001  4002  <ETX>X   ; voice mail 7 move mailbox "
          "mailbox 4001 to 4002, check character wrong",
          "10:00:00.102 PBX>PMS <NAK>   ; NAK to voice mail 7 move mailbox mailbox 4001 to "
          "4002 after 2 ms",
          "10:00:00.200 PBX>PMS <STX>4  40010201<ETX>1   ; voice mail 4, check character right",
          "10:00:05.200 -- no answer within 5 s to voice mail 4"},
         {"voice mail 2 check-in: 1/1/0/0 3/3/3", "PBX voice mail 4: 1/0/0/1 -1/-1/-1"}},
        {"what is no message is shown as it came",
         {},
         {{0, pms, "hello\\x0D\\x0A"},
          {10, pms, "<STX>CHK1 <STX>CHK1   101<ETX>"},
          {20, pbx, "<STX>STS2   1"},
          {300, pbx, "\\xFF\\xFB\\x01<ACK>garbage<ETX>"}},
         {"10:00:00.000 PMS>PBX hello\\x0D\\x0A   ; stray bytes",
          "10:00:00.010 PMS>PBX <STX>CHK1    ; unfinished frame",
          "10:00:00.010 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
          "10:00:00.020 PBX>PMS <STX>STS2   1   ; unfinished frame",
          "10:00:00.300 PBX>PMS \\xFF\\xFB\\x01   ; stray bytes",
          "10:00:00.300 PBX>PMS <ACK>   ; ACK to check-in room 101 after 290 ms",
          "10:00:00.300 PBX>PMS garbage<ETX>   ; stray bytes"},
         {}},
        {"control bytes in a field reach no terminal",
         {},
         {{0, pms, "<STX>CHK1  \\x07\\x1B1<ETX>"}},
         {"10:00:00.000 PMS>PBX <STX>CHK1  \\x07\\x1B1<ETX>   ; check-in room \\x07\\x1B1",
          "10:00:05.000 -- no answer within 5 s to check-in room \\x07\\x1B1"},
         {}},
        // A monitor hears each side on a port of its own, and an answer's port may hand it over
        // first.
        {"on a monitor an answer heard first still answers",
         {.learn = true, .monitor = true},
         {{0, pbx, "<ACK>"},
          {0, pms, "<ENQ>"},
          {100, pbx, "<ACK>"},
          {130, pms, "<STX>CHK1   101<ETX>"},
          {1000, pbx, "<NAK>"}},
         {"10:00:00.000 PMS>PBX <ENQ>   ; ENQ bid",
          "10:00:00.000 PBX>PMS <ACK>   ; ACK to the ENQ bid, heard 0 ms before it",
          "10:00:00.130 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101",
          "10:00:00.100 PBX>PMS <ACK>   ; ACK to check-in room 101, heard 30 ms before it",
          "10:00:01.000 PBX>PMS <NAK>   ; NAK, answering nothing waiting"},
         {"ENQ: 1/1/0/0 0/0/0", "check-in: 1/1/0/0 0/0/0"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TapAnalysis tap(c.setup);
        for (const Send& s : c.sends)
            tap.send(s.atMs, s.from, QString::fromLatin1(s.readable));
        tap.run();
        EXPECT_EQ(tap.lines, c.lines);
        for (const QString& row : c.rows)
            EXPECT_EQ(tap.row(row.section(": ", 0, 0)), row.section(": ", 1));
        if (c.setup.learn) {
            EXPECT_EQ(tap.learned, QStringList{"CHK1   101"});
        }
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
    EXPECT_EQ(tap.lines.filter("stray bytes").join("").count('x') + untraced, 3000);
    EXPECT_EQ(tap.lines.filter(" -- ").join('\n'),
              QStringLiteral("10:00:00.000 -- %1 bytes PMS>PBX relayed but not traced: the "
                             "trace fell behind")
                  .arg(untraced));
    EXPECT_TRUE(tap.lines.last().endsWith("<ACK>   ; ACK, answering nothing waiting"));
}

TEST(TrafficAnalysis, TheTraceIsHandedOverASliceAtATime) {
    VirtualEventPump pump;
    qsizetype largest = 0, total = 0;
    TraceBacklog backlog(pump, [&](const TraceEntry& entry) {
        largest = qMax(largest, entry.bytes.size());
        total += entry.bytes.size();
    });
    backlog.passed(pms, QByteArray(64 * 1024, 'x'));
    pump.processEvents();
    EXPECT_EQ(total, 0); // nothing traced while the answer may still be on its way
    pump.waitForEvent(TraceBacklog::quietMs);
    pump.processEvents();
    EXPECT_EQ(total, 64 * 1024);
    EXPECT_LE(largest, TraceBacklog::sliceBytes);
}

} // namespace
