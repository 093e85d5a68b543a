#pragma once

namespace larkspur {

class Link;
class WireTrace;

// Feeds `trace` with every write and read of `link`, stamped with the link's clock.
void traceLink(Link& link, WireTrace& trace);

} // namespace larkspur
