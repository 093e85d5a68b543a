#pragma once

#include <QDateTime>

namespace larkspur {

// The date and time a program's clock starts at: the wall clock's, unless the environment's
// LARKSPUR_CLOCK_START holds one ("2026-01-05T23:59:58"). Tests start a run just before midnight
// with it; a preload that shifts the whole process's clock cannot run beside the sanitizers.
QDateTime clockStart();

} // namespace larkspur
