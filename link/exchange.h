#pragma once

#include <QString>

namespace larkspur {

class Link;

// How a wait for the PBX's acknowledgement ended.
struct AckWait {
    enum class Outcome {
        Acknowledged, // ACK came first
        OtherAnswer,  // something else came first: `received` says what
        TimedOut,     // nothing came in time
        Interrupted,  // the link was lost or the console is closing
        Busy,         // another wait was running, so nothing was sent
    };
    Outcome outcome = Outcome::TimedOut;
    QString received; // the receiver's name for what came: "ACK", "NAK", a message

    // `ackFailed`: the wait did not end on an ACK.
    bool ackFailed() const { return outcome != Outcome::Acknowledged; }
};

// The ENQ/ACK exchange. Each wait reads the messages that arrive from its start on, in order,
// and says how it ended; only `poll_for_ack` also takes the receiver's last message from before
// it started, as the exchange always has.

// Waits up to five seconds for the next message and judges it; `show` logs a failure.
AckWait wait_for_ack(Link& link, bool show);
// Up to five one-second looks for an ACK, the newest message before the poll included.
bool poll_for_ack(Link& link, bool show);
// Bids for the line with up to five ENQs; the outcome of the last bid.
AckWait send_enq(Link& link);
// The connection test's bid: ENQ and a poll, until acknowledged or `attemptsLeft` runs out.
bool send_enq_counted(Link& link, qint16& attemptsLeft);

} // namespace larkspur
