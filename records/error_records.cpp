#include "records/error_records.h"

namespace larkspur {

void ErrorRecords::recordError(const QString& record, bool counts) {
    m_errorReport += record;
    if (counts)
        ++m_errorCount;
    Q_EMIT errorRecorded(record);
}

} // namespace larkspur
