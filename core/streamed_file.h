#pragma once

#include <QByteArrayView>
#include <QFile>
#include <QString>

namespace larkspur {

// A file written as a run goes, so a week of it costs no memory: every write is checked, and so
// is the end. The first failure is kept with its reason and nothing more is written after it,
// so a report cut short on a full disk is never taken for a whole one.
class StreamedFile {
public:
    // Creates or empties `path`; false with the reason in error().
    bool open(const QString& path);
    // Writes and hands `bytes` to the system at once, so a reader following the file sees them.
    bool write(QByteArrayView bytes);
    // Flushes and closes; false when the file did not end up whole.
    bool close();

    bool isOpen() const { return m_file.isOpen(); }
    bool failed() const { return !m_error.isEmpty(); }
    const QString& path() const { return m_path; }
    const QString& error() const { return m_error; }

private:
    bool fail();

    QString m_path;
    QFile m_file;
    QString m_error;
};

} // namespace larkspur
