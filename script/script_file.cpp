#include "script/script_file.h"

#include "core/termination_signals.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace larkspur {

namespace {
QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

// Closes the descriptor when the read is over, whichever way.
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0)
            ::close(fd);
    }
};

ScriptFile fail(ScriptFile::Status status, const QString& error) {
    ScriptFile file;
    file.status = status;
    file.error = error;
    return file;
}
} // namespace

ScriptFile readScriptFile(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const auto refused = [](const QString& why) { return fail(ScriptFile::Status::Refused, why); };
    const auto interrupted = [] {
        return fail(ScriptFile::Status::Interrupted, QStringLiteral("interrupted"));
    };

    // A FIFO blocks here until someone opens it for writing.
    Descriptor in;
    while ((in.fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC)) < 0) {
        if (errno != EINTR)
            return refused(systemError(errno));
        if (terminationRequested())
            return interrupted();
    }
    struct stat status {};
    if (::fstat(in.fd, &status) != 0)
        return refused(systemError(errno));
    if (S_ISDIR(status.st_mode))
        return refused(QStringLiteral("it is a directory"));
    if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode))
        return refused(QStringLiteral("it is not a regular file, a pipe or a FIFO"));
    const QString tooLarge = QStringLiteral("it holds more than %1 MB, more than a script can")
                                 .arg(maxScriptBytes >> 20);
    if (S_ISREG(status.st_mode) && status.st_size > maxScriptBytes)
        return refused(tooLarge);

    ScriptFile file;
    // A regular file is read into its size and a little room for the read that finds its end; a
    // pipe doubles its room as it comes.
    constexpr qsizetype chunk = 64 * 1024;
    if (S_ISREG(status.st_mode))
        file.bytes.reserve(qsizetype(status.st_size) + chunk);
    for (;;) {
        if (file.bytes.size() > maxScriptBytes)
            return refused(tooLarge);
        const qsizetype before = file.bytes.size();
        if (file.bytes.capacity() - before < chunk)
            file.bytes.reserve(qMin(qMax(before * 2, before + chunk), maxScriptBytes + 2 * chunk));
        file.bytes.resize(before + chunk);
        const ssize_t n = ::read(in.fd, file.bytes.data() + before, size_t(chunk));
        file.bytes.resize(before + qMax<ssize_t>(0, n));
        if (n > 0)
            continue;
        if (n == 0)
            break;
        if (errno != EINTR)
            return refused(systemError(errno));
        if (terminationRequested())
            return interrupted();
    }
    if (!S_ISREG(status.st_mode))
        file.bytes.squeeze();
    file.status = ScriptFile::Status::Read;
    return file;
}

} // namespace larkspur
