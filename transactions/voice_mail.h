#pragma once

namespace larkspur {

class Session;

// The mailbox operations that nine hotel buttons carry in voice-mail mode, each valued as its
// function code in the message catalogue.
enum class VmailOperation : char {
    CheckIn = '2',             // Check In
    CheckOut = '3',            // Check Out
    QueryMessageWaiting = '6', // Add Name
    MoveMailbox = '7',         // Delete Name
    TextMessageWaiting = '9',  // Replace Name
    CheckInWithPasscode = 'A', // Transfer Name
    ChangePasscode = 'B',      // Add Depart.
    ChangeId = 'D',            // Replace Depart.
    ModifyFcos = '8',          // Delete Depart.
};

// Those buttons switch to their mailbox operation in any mode but HOTEL.
bool inVmailMode(const Session& session);

// Sends one mailbox operation: over-long fields are cut in their text boxes, empty ones are
// refused with a notice, the frame goes out without a line bid and is judged after 2 s. The frame
// is recorded whether or not the PBX acknowledged it.
void send_vmail_operation(Session& session, VmailOperation operation);

} // namespace larkspur
