#pragma once

#include "core/pms_mode.h"

#include <QString>

namespace larkspur {

// STX + body + ETX + BCC for a voice-mail function code and its two fields. `protocolType`
// "HYATT" pads the body to 13; an unknown code is framed as it is, with `recognized` false.
QString build_vmail_message(const QString& code, const QString& field1, const QString& field2,
                            Protocol protocolType, bool& recognized);

} // namespace larkspur
