#pragma once

namespace larkspur {

class EventPump;

// Returns after about `seconds`, handling every event that arrives meanwhile.
void pause_seconds(EventPump& pump, float seconds);

} // namespace larkspur
