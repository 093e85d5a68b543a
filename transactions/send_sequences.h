#pragma once

#include <QString>

namespace larkspur {

class ErrorRecords;
class Link;

// How one message of a transaction ended. AcknowledgedByStaleAck: a check-in whose frame the PBX
// never answered, counted as acknowledged by the ACK its ENQ left behind. Interrupted: the link
// was lost or the console is closing; the sequence ended where it stood.
enum class SendResult { Acknowledged, AcknowledgedByStaleAck, Failed, Interrupted };

// What differs between the hotel transactions in the shared send sequence.
struct HotelMessageRule {
    QString logPrefix;              // "Sending     -->", each with its own blanks
    QString failureSentence;        // "-> PBX DID NOT ACKnowkledge the Check in message:"
    bool ackNeedsPoll = false;      // check-in also polls and judges by the last control
    bool enqFailureCounts = true;   // restriction and linked suites leave errorCount alone
    bool enqFailureLogTimed = true; // restriction logs the ENQ failure without the time
};

// The hotel sequence for one message after the caller's guard: ENQ, then the frame until
// acknowledged. `attempt` is shared by every message of one click. The failure lines show
// `reportedText`, which is the body but for the wake-up call; failures go to `errors`.
SendResult sendHotelMessage(Link& link, ErrorRecords& errors, const HotelMessageRule& rule,
                            const QString& body, int& attempt, const QString& reportedText);

// The voice-mail sequence: send the frame, pause 2 s, report the ACK (Failed: none came).
SendResult sendVmailFrame(Link& link, const QString& frame, const QString& logLine,
                          bool logSuccess);

} // namespace larkspur
