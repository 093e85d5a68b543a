#pragma once

#include "core/pms_mode.h"

#include <QString>

namespace larkspur {

// The lines a recorded script is made of. The window's recorder writes them as the operator
// works and larkspur-tap writes the same lines for what it watched a PMS do. A hotel
// transaction's line is its message body as it stands, so it needs no rule of its own here.

// The first line of a recording: "VMAIL" and the protocol with CR LF in voice-mail mode; a hotel
// script has none.
QString scriptHeader(PmsMode mode, Protocol protocol);

// A voice-mail transaction: the whole frame, control characters and check character included,
// then "~", which marks a ready-made frame for the runner.
QString vmailScriptLine(const QString& frame);

// A met wait's whole line: the word, then the item itself or, for a room-bearing item, its
// recorded text followed by `room` (five characters), a blank and the digit: "WAIT STS2   101 5",
// "NTFY ack 3".
QString expectationScriptLine(bool withNotice, const QString& item, const QString& room,
                              const QString& digit);

} // namespace larkspur
