#include "sim/quit_on_signal.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QString>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace larkspur::sim {

namespace {

// A signal handler may only write to a pipe; the event loop reads the other end.
int signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

} // namespace

bool quitOnTerminationSignals(QString* error) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        if (error)
            *error = QStringLiteral("cannot watch for signals: ") +
                     QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    auto* notifier =
        new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);

    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    return true;
}

} // namespace larkspur::sim
