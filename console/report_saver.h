#pragma once

#include "assembly/junit_recorder.h"
#include "assembly/report_recorder.h"

#include <QObject>

namespace larkspur {

class Assembly;

// File > Save Report...: the page of the last script run, as larkspur-run --report writes it,
// with the commands and failures counted as its JUnit report counts them.
class ReportSaver : public QObject {
    Q_OBJECT
public:
    ReportSaver(Assembly& console, QObject* parent = nullptr);

    // Asks where, and writes the page there.
    void save();

private:
    Assembly& m_console;
    JunitRecorder m_cases;
    ReportRecorder m_report;
};

} // namespace larkspur
