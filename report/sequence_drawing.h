#pragma once

#include "report/run_record.h"

#include <QString>

namespace larkspur {

// The conversation as a drawing: a table whose rows are arrows between a PMS lane and a PBX
// lane, one per message with its time, each answer with its delay, the waits with their ends,
// commands heading the exchanges they made, failures in red and in words. `total` steps were
// recorded; the gaps between the `steps` kept are counted where they fall.
QString sequenceDrawing(const QList<ReportStep>& steps, qint64 total);

} // namespace larkspur
