#pragma once

namespace larkspur {

class Link;

// The manual link commands: one control character or link-level message each, no wait. ACK and
// ENQ have no guard, so they can answer the PBX while a sender waits; the others do nothing
// while a wait runs.
void cmd_ack(Link& link);
void cmd_nak(Link& link);
void cmd_enquiry_basic(Link& link);
void cmd_ayt(Link& link);
void cmd_grs(Link& link);
void cmd_end(Link& link);

} // namespace larkspur
