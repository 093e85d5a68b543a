#pragma once

namespace larkspur {

struct PlayerOptions;

// larkspur-run --check: reads the script as the runner does and prints what the runner will
// reach and what will not play as written, opening no link. Returns the exit status: 0 clean,
// 1 with warnings, 3 when the script cannot be read or the run would stop.
int checkHeadless(const PlayerOptions& options);

} // namespace larkspur
