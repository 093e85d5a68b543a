#include "core/termination_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <atomic>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace larkspur {

namespace {
// A signal handler may only write to a pipe and set a flag; the event loop reads the pipe.
int signalPipe[2] = {-1, -1};
std::atomic<bool> requested{false};

void onSignal(int) {
    requested = true;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

void install(bool resumeCalls) {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = resumeCalls ? SA_RESTART : 0;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}
} // namespace

bool watchTerminationSignals(std::function<void()> handler, QString* error) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        if (error)
            *error = QStringLiteral("cannot watch for signals: ") +
                     QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    auto* notifier =
        new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(),
                     [handler = std::move(handler)] {
                         char drained[16];
                         while (::read(signalPipe[0], drained, sizeof drained) > 0) {
                         }
                         handler();
                     });
    install(true);
    return true;
}

bool terminationRequested() {
    return requested;
}

InterruptibleCalls::InterruptibleCalls() {
    install(false);
}

InterruptibleCalls::~InterruptibleCalls() {
    install(true);
}

} // namespace larkspur
