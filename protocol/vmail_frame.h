#pragma once

#include <QString>

namespace larkspur {

class TrafficLog;

// STX + body + ETX + BCC for a voice-mail function code and its two fields. `protocolType`
// "HYATT" pads the body to 13; an unknown code is logged and framed as it is.
QString build_vmail_message(const QString& code, const QString& field1, const QString& field2,
                            const QString& protocolType, TrafficLog& log);

} // namespace larkspur
