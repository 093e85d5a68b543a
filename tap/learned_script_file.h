#pragma once

#include "tap/tap_options.h"

#include <QDateTime>
#include <QFile>
#include <QString>

#include <functional>

namespace larkspur::tap {

// The script being learned, on disk. The runner never plays a file's last line, so the file
// always ends with a closing comment line after the last line learned: at every moment, the tap
// killed included, it replays all that was learned so far. A line learned is written over the
// closing line together with a new one, in one write, and the file is cut after it when it came
// out shorter. A write cut short leaves a piece of a closing line as the last line, and cutting
// the file left undone leaves the end of the old closing line as the last line: neither plays,
// and every line before them is whole. A failed write is said once and ends the writing.
class LearnedScriptFile {
public:
    // `complain` says on standard error what went wrong.
    LearnedScriptFile(const QString& path, std::function<void(const QString&)> complain);

    // Creates the file afresh, empty; why it cannot otherwise.
    QString open();
    // Writes `line` and its CR LF in place of the closing line, and `closing` as the new one.
    void write(const QString& line, const QString& closing);
    bool failed() const { return m_failed; }

private:
    void fail();

    QFile m_file;
    std::function<void(const QString&)> m_complain;
    qint64 m_closingAt = 0;
    bool m_failed = false;
};

// The closing line: what was learned, from when to when, on which link.
QString closingLine(const QDateTime& since, const QDateTime& until, const TapOptions& options,
                    int commands);

} // namespace larkspur::tap
