// The session on the virtual pump: when each answer and follow-up goes out.
#include "core/pause.h"
#include "core/virtual_event_pump.h"
#include "protocol/readable_notation.h"
#include "sim/pbx_session.h"
#include "sim/peer.h"
#include "sim/tracer.h"

#include <gtest/gtest.h>

#include <memory>

using namespace larkspur;
using namespace larkspur::sim;

namespace {

// The console's side: every write the session makes, as "<ms> <bytes>".
class RecordingPeer : public Peer {
public:
    explicit RecordingPeer(const VirtualEventPump& pump) : m_pump(pump) {}
    bool write(const QByteArray& bytes) override {
        written << QStringLiteral("%1 %2").arg(m_pump.elapsedMs()).arg(toReadable(bytes));
        return true;
    }
    QStringList written;

private:
    const VirtualEventPump& m_pump;
};

struct Rig {
    VirtualEventPump pump;
    RecordingPeer peer{pump};
    Tracer tracer;
    SimOptions options;
    std::unique_ptr<PbxSession> session;

    explicit Rig(const QStringList& arguments)
        : options(parseSimArguments(arguments).options.value_or(SimOptions{})),
          session(std::make_unique<PbxSession>(peer, options, tracer, pump)) {}

    // The console sends each piece 100 ms after the last; then a second goes by.
    void play(const QStringList& pieces) {
        for (const QString& piece : pieces) {
            Q_EMIT peer.received(parseReadable(piece, nullptr));
            pause_seconds(pump, 0.1f);
        }
        pause_seconds(pump, 1.0f);
    }
};

TEST(PbxSession, AnswersInTurnAndAfterTheirDelay) {
    struct Case {
        QStringList arguments;
        QStringList pieces;
        QStringList written;
    } cases[] = {
        {{}, {"<ENQ>"}, {"0 <ACK>"}},
        {{"--on-enq", "nak,silent,ack"},
         {"<ENQ>", "<ENQ>", "<ENQ>", "<ENQ>"},
         {"0 <NAK>", "200 <ACK>", "300 <ACK>"}},
        // A later option replaces the whole list.
        {{"--on-enq", "nak,ack", "--on-enq", "silent"}, {"<ENQ>", "<ENQ>"}, {}},
        // Frames and ENQs keep separate turns.
        {{"--on-frame", "nak,ack", "--on-enq", "silent,nak"},
         {"<ENQ>", "<STX>A<ETX>", "<STX>A<ETX><ENQ>", "<STX>A<ETX>"},
         {"100 <NAK>", "200 <ACK>", "200 <NAK>", "300 <ACK>"}},
        {{"--answer-delay", "0.02"}, {"<ENQ>", "<STX>A<ETX>"}, {"20 <ACK>", "120 <ACK>"}},
        // A frame in pieces is answered once whole.
        {{}, {"<STX>A", "<ETX><ENQ>"}, {"100 <ACK>", "100 <ACK>"}},
        {{"--mode", "VMAIL"}, {"<STX>1<ETX>", "2"}, {"100 <ACK>"}},
        // A follow-up counts from the answer, so it never overtakes it.
        {{"--answer-delay", "0.02", "--after", "A", "0", "B"},
         {"<STX>A<ETX>"},
         {"20 <ACK>", "20 <STX>B<ETX>"}},
        {{"--answer-delay", "0.02", "--on-frame", "silent", "--after", "A", "0.5", "B"},
         {"<STX>A<ETX>"},
         {"520 <STX>B<ETX>"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE((c.arguments.join(' ') + " <- " + c.pieces.join('|')).toStdString());
        Rig rig(c.arguments);
        rig.play(c.pieces);
        EXPECT_EQ(rig.peer.written, c.written);
    }
}

TEST(PbxSession, PacesWhatItSendsAsARealLineDelivers) {
    struct Case {
        QStringList arguments;
        QStringList written;
    } cases[] = {
        // 1200 baud: 8.3 ms a byte; the ACK that follows waits for the line.
        {{"--line-speed", "1200", "--at", "0", "AB", "--at", "0", "<ACK>"},
         {"0 <STX>", "8 A", "17 B", "25 <ETX>", "33 <ACK>"}},
        // Pieces of two bytes with the default pause of 20 ms after each but the last.
        {{"--split", "2", "--at", "0", "ABC"}, {"0 <STX>A", "20 BC", "40 <ETX>"}},
        {{"--split", "3", "--split-gap", "0.1", "--at", "0", "AB", "--at", "0", "<ENQ>"},
         {"0 <STX>AB", "100 <ETX>", "100 <ENQ>"}},
        // A USB adapter at 9600 baud: each piece leaves once its bytes have crossed the line.
        {{"--line-speed", "9600", "--split", "3", "--split-gap", "0.016", "--at", "0", "ABCD"},
         {"0 <STX>AB", "19 CD<ETX>"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        Rig rig(c.arguments);
        rig.session->begin(false);
        rig.play({});
        EXPECT_EQ(rig.peer.written, c.written);
    }
}

TEST(PbxSession, ALeavingConsoleCancelsWhatWasStillToBeSent) {
    Rig rig({"--answer-delay", "0.02", "--at", "1", "<ENQ>"});
    rig.session->begin(false);
    Q_EMIT rig.peer.received(parseReadable("<ENQ>", nullptr));
    rig.session.reset();
    rig.play({});
    EXPECT_EQ(rig.peer.written, QStringList());
}

} // namespace
