#include "console/operation_runner.h"

namespace larkspur {

void OperationRunner::run(const std::function<void()>& operation) {
    if (m_refusing)
        return;
    ++m_depth;
    operation();
    if (--m_depth == 0)
        Q_EMIT allReturned();
}

} // namespace larkspur
