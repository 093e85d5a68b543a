#include "sim/stdin_lines.h"

#include <QSocketNotifier>
#include <QString>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace larkspur::sim {

StdinLines::StdinLines(int fd, QObject* parent) : QObject(parent), m_fd(fd) {
    if (::fcntl(m_fd, F_GETFD) < 0)
        return; // closed: nothing will ever be typed
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &StdinLines::readSome);
}

StdinLines::~StdinLines() = default;

void StdinLines::readSome() {
    char buffer[4096];
    const ssize_t n = ::read(m_fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR)
        return;
    if (n <= 0) {
        m_notifier->setEnabled(false);
        return;
    }
    m_partial.append(buffer, n);
    qsizetype end;
    while ((end = m_partial.indexOf('\n')) >= 0) {
        QByteArray text = m_partial.left(end);
        m_partial.remove(0, end + 1);
        if (text.endsWith('\r'))
            text.chop(1);
        Q_EMIT line(QString::fromUtf8(text));
    }
}

} // namespace larkspur::sim
