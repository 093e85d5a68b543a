#pragma once

#include <QFile>
#include <QString>

#include <functional>

namespace larkspur::tap {

// The script being learned, written line by line so that a tap stopped hard keeps everything
// learned so far. A failed write is said once and ends the writing.
class LearnedScriptFile {
public:
    // `complain` says on standard error what went wrong.
    LearnedScriptFile(const QString& path, std::function<void(const QString&)> complain);

    // Creates the file afresh; why it cannot otherwise.
    QString open();
    // Writes `line` and its CR LF.
    void write(const QString& line);
    bool failed() const { return m_failed; }

private:
    QFile m_file;
    std::function<void(const QString&)> m_complain;
    bool m_failed = false;
};

} // namespace larkspur::tap
