#include "core/streamed_file.h"

namespace larkspur {

bool StreamedFile::open(const QString& path) {
    m_path = path;
    m_error.clear();
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return fail();
    return true;
}

bool StreamedFile::write(QByteArrayView bytes) {
    if (failed() || !m_file.isOpen())
        return false;
    if (m_file.write(bytes.data(), bytes.size()) != bytes.size())
        return fail();
    return true;
}

bool StreamedFile::close() {
    if (!m_file.isOpen())
        return !failed();
    const bool flushed = m_file.flush();
    m_file.close();
    if (!failed() && (!flushed || m_file.error() != QFileDevice::NoError))
        fail();
    return !failed();
}

bool StreamedFile::fail() {
    if (m_error.isEmpty())
        m_error = m_file.errorString();
    if (m_file.isOpen())
        m_file.close();
    return false;
}

} // namespace larkspur
