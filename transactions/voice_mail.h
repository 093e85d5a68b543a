#pragma once

namespace larkspur {

class Session;

// The mailbox operations that nine hotel buttons carry in voice-mail mode.
enum class VmailOperation {
    CheckIn,             // Check In
    CheckOut,            // Check Out
    QueryMessageWaiting, // Add Name
    MoveMailbox,         // Delete Name
    TextMessageWaiting,  // Replace Name
    CheckInWithPasscode, // Transfer Name
    ChangePasscode,      // Add Depart.
    ChangeId,            // Replace Depart.
    ModifyFcos,          // Delete Depart.
};

// Those buttons switch to their mailbox operation in any mode but HOTEL.
bool inVmailMode(const Session& session);

// Sends one mailbox operation: over-long fields are cut in their text boxes, empty ones are
// refused with a notice, the frame goes out without a line bid and is judged after 2 s. The frame
// is recorded whether or not the PBX acknowledged it.
void send_vmail_operation(Session& session, VmailOperation operation);

} // namespace larkspur
