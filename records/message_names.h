#pragma once

#include "core/pms_mode.h"
#include "records/side.h"

#include <QByteArray>
#include <QString>

namespace larkspur {

// What the traces and the statistics call a frame one side sent.
struct MessageName {
    QString
        description; // "check-in room 101", "STS2 room 101", "voice mail 2 check-in mailbox 4001"
    QString type;    // its statistics row: "check-in", "PBX STS2"
};

// Names a whole frame (STX to ETX, and the check character in voice-mail mode). The PMS's frames
// are named by the message catalogue as the console names what it sends; the PBX's by the wait
// they meet. The PBX's rows of the statistics start with "PBX ".
MessageName frameName(const QByteArray& frame, Side from, PmsMode mode);

// The statistics row of an ENQ bid: "ENQ", or "PBX ENQ" for the PBX's.
QString enqType(Side from);

} // namespace larkspur
