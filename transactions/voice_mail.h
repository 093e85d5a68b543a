#pragma once

#include <QString>

namespace larkspur {

class Session;

// Sends the mailbox operation of function code `code`: over-long fields are cut in their text
// boxes, empty ones are refused with a notice, the frame goes out without a line bid and is
// judged after 2 s. The frame is recorded whether or not the PBX acknowledged it.
void send_vmail_operation(Session& session, const QString& code);

} // namespace larkspur
