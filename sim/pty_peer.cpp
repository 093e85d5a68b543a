#include "sim/pty_peer.h"

#include <QFileInfo>
#include <QSocketNotifier>
#include <QtDebug>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace larkspur::sim {

namespace {

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

bool retryLater() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

std::unique_ptr<PseudoTerminal> openPseudoTerminal(const QString& link, QString* error) {
    auto pty = std::make_unique<PtyPeer>();
    if (!pty->open(link, error))
        return nullptr;
    return pty;
}

PtyPeer::PtyPeer(QObject* parent) : PseudoTerminal(parent) {}

PtyPeer::~PtyPeer() {
    m_watch.stop();
    if (!m_link.isEmpty()) {
        // Only our own link: someone may have pointed it elsewhere since.
        const QByteArray target = QFile::encodeName(m_slavePath);
        char buffer[256];
        const ssize_t n = ::readlink(QFile::encodeName(m_link).constData(), buffer, sizeof buffer);
        if (n == target.size() && target == QByteArrayView(buffer, n))
            ::unlink(QFile::encodeName(m_link).constData());
    }
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
}

bool PtyPeer::open(const QString& link, QString* error) {
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (::openpty(&m_master, &m_slave, nullptr, nullptr, nullptr) != 0)
        return fail(QStringLiteral("cannot open a pseudo-terminal: ") + systemError());
    ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_slave, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);

    // Raw, so that every byte value passes untouched and nothing is echoed back.
    termios settings{};
    ::tcgetattr(m_slave, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(m_slave, TCSANOW, &settings);

    char name[256];
    if (::ttyname_r(m_slave, name, sizeof name) != 0)
        return fail(QStringLiteral("cannot name the pseudo-terminal: ") + systemError());
    m_slavePath = QFile::decodeName(name);

    if (!link.isEmpty()) {
        const QFileInfo existing(link);
        if (existing.isSymLink())
            QFile::remove(link);
        else if (existing.exists())
            return fail(QStringLiteral("%1 exists and is not a symlink").arg(link));
        if (::symlink(name, QFile::encodeName(link).constData()) != 0)
            return fail(QStringLiteral("cannot make the symlink %1: %2").arg(link, systemError()));
        m_link = link;
    }

    m_watch.watch(
        m_master, this, [this] { readMaster(); }, [this] { writePending(); });
    return true;
}

bool PtyPeer::write(const QByteArray& bytes) {
    if (m_master < 0)
        return false;
    if (!m_pending.isEmpty()) {
        if (m_pending.size() + bytes.size() > maxUnsentBytes) {
            // A serial console cannot be sent away: what it does not read is thrown away.
            Q_EMIT stalled(m_pending.size() + bytes.size());
            m_pending.clear();
            m_watch.setWriting(false);
            return false;
        }
        m_pending += bytes; // behind what is already waiting, to keep the order
        return true;
    }
    ssize_t n = ::write(m_master, bytes.constData(), size_t(bytes.size()));
    if (n < 0) {
        if (!retryLater())
            return false;
        n = 0;
    }
    if (n < bytes.size()) {
        m_pending = bytes.mid(n);
        m_watch.setWriting(true);
    }
    return true;
}

void PtyPeer::readMaster() {
    char buffer[4096];
    const ssize_t n = ::read(m_master, buffer, sizeof buffer);
    if (n > 0) {
        Q_EMIT received(QByteArray(buffer, n));
    } else if (n == 0 || !retryLater()) {
        // Cannot happen while we hold the slave; if it does, stop rather than spin.
        qWarning("larkspur-pbxsim: reading the pseudo-terminal failed: %s",
                 qPrintable(systemError()));
        m_watch.setReading(false);
    }
}

void PtyPeer::writePending() {
    const ssize_t n = ::write(m_master, m_pending.constData(), size_t(m_pending.size()));
    if (n > 0) {
        m_pending.remove(0, n);
    } else if (n < 0 && !retryLater()) {
        qWarning("larkspur-pbxsim: writing the pseudo-terminal failed: %s",
                 qPrintable(systemError()));
        m_pending.clear();
    }
    m_watch.setWriting(!m_pending.isEmpty());
}

} // namespace larkspur::sim
