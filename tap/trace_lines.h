#pragma once

#include "records/side.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace larkspur::tap {

// The lines of the tap's trace, each led by a time stamp to the millisecond:
//   2026-01-05 10:00:00.123 PMS>PBX <STX>CHK1   101<ETX>   ; check-in room 101
//   2026-01-05 10:00:00.125 PBX>PMS <ACK>   ; ACK to check-in room 101 after 2 ms
//   2026-01-05 10:00:07.000 -- the PMS hung up (127.0.0.1:40312: the connection was closed)

// A message `from` sent, in readable notation, and what it is.
QString messageLine(const QDateTime& time, Side from, const QByteArray& bytes,
                    const QString& description);

// Anything else: sessions, time-outs, what could not be traced.
QString noteLine(const QDateTime& time, const QString& text);

} // namespace larkspur::tap
