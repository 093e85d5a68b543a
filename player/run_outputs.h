#pragma once

#include "assembly/junit_report.h"
#include "core/streamed_file.h"
#include "records/traffic_log.h"

#include <QObject>

namespace larkspur {

class ErrorRecords;
class JunitRecorder;
class RunStatistics;
class WireTrace;
struct PlayerOptions;

// What a headless run writes: the traffic log on standard output and in --save-log, the error
// records in --error-report and the wire trace in --trace, all as they come, so a week-long run
// keeps none of them in memory; and the JUnit report at the end. Every write is checked: the
// first failure of each output is named on standard error at once and the run then ends with
// its own status. A standard output whose reader has gone only stops the traffic log there.
class RunOutputs : public QObject, public TrafficDisplay {
    Q_OBJECT
public:
    RunOutputs(const PlayerOptions& options, JunitRecorder& junit);

    // Opens the files the options name; false when one cannot be (named on standard error).
    bool open();
    // Streams the error records and the wire trace rows from now on.
    void follow(ErrorRecords& errors, WireTrace& trace);

    void insertAtEnd(const QString& text, bool replaceLastCharacter) override;
    void clear() override {}

    // Closes the files and writes the JUnit report with the run statistics as its properties.
    void finish(const RunStatistics& statistics);

    // Something could not be written whole.
    bool failed() const { return m_failed; }

private:
    enum class Stdout { Open, Gone, Failed };
    void writeStdout(const QByteArray& bytes);
    void write(StreamedFile& file, QByteArrayView bytes, const char* what);
    void close(StreamedFile& file, const char* what);
    void fail(const QString& what, const QString& path, const QString& reason);

    const PlayerOptions& m_options;
    JunitRecorder& m_recorder;
    JunitReport m_junit;
    StreamedFile m_saveLog;
    StreamedFile m_errorReport;
    StreamedFile m_trace;
    Stdout m_stdout = Stdout::Open;
    bool m_failed = false;
};

} // namespace larkspur
