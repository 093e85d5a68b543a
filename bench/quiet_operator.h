#pragma once

#include "core/operator_interface.h"

namespace bench {

// Notices dropped, no files chosen: nobody sits at a benchmark.
class QuietOperator : public larkspur::OperatorInterface {
public:
    void notify(const QString&) override {}
    QString chooseFileToOpen(const QString&) override { return {}; }
    QString chooseFileToSave(const QString&) override { return {}; }
};

} // namespace bench
