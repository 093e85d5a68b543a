// Voice-mail frames built for the link's protocol, with the log line for an unknown code.
#include "link/link.h"
#include "protocol/vmail_frame.h"
#include "records/traffic_log.h"

namespace larkspur {

QString Link::build_vmail_message(const QString& code, const QString& field1,
                                  const QString& field2) {
    bool recognized = false;
    const QString frame =
        larkspur::build_vmail_message(code, field1, field2, m_protocolType, recognized);
    if (!recognized)
        m_log.logLine(QStringLiteral("Unrecognized command!"));
    return frame;
}

} // namespace larkspur
