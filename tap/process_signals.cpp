#include "tap/process_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace larkspur::tap {

namespace {
// A signal handler may only write to a pipe; the event loop reads it.
int hangUpPipe[2] = {-1, -1};

void onHangUp(int) {
    const int saved = errno;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(hangUpPipe[1], &byte, 1);
    errno = saved;
}
} // namespace

bool watchHangUpSignal(std::function<void()> handler, QString* error) {
    if (::pipe2(hangUpPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        *error = QStringLiteral("cannot watch for SIGHUP: ") +
                 QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    auto* notifier =
        new QSocketNotifier(hangUpPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(),
                     [handler = std::move(handler)] {
                         char drained[16];
                         while (::read(hangUpPipe[0], drained, sizeof drained) > 0) {
                         }
                         handler();
                     });
    struct sigaction action {};
    action.sa_handler = onHangUp;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGHUP, &action, nullptr);
    return true;
}

void ignoreBrokenPipes() {
    ::signal(SIGPIPE, SIG_IGN);
}

} // namespace larkspur::tap
