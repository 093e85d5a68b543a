#include "records/error_records.h"

namespace larkspur {

void ErrorRecords::recordError(const QString& record, bool counts) {
    if (m_keepReport)
        m_errorReport += record;
    if (counts) {
        ++m_errorCount;
        ++m_countedSinceReset;
    }
    Q_EMIT errorRecorded(record);
}

} // namespace larkspur
