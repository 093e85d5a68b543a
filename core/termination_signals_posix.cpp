// Termination signals where POSIX has them: a self-pipe wakes the event loop.
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

void onSignal(int number) {
    requested = true;
    const char byte = char(number);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

Termination termination(int number) {
    switch (number) {
    case SIGHUP:
        return Termination::HangUp;
    case SIGTERM:
        return Termination::Terminate;
    default:
        return Termination::Interrupt;
    }
}

void install(bool resumeCalls) {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = resumeCalls ? SA_RESTART : 0;
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(number, &action, nullptr);
}
} // namespace

bool watchTerminationSignals(std::function<void(Termination)> handler, QString* error) {
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
                         char numbers[16];
                         ssize_t n = 0;
                         while ((n = ::read(signalPipe[0], numbers, sizeof numbers)) > 0) {
                             for (ssize_t i = 0; i < n; ++i)
                                 handler(termination(numbers[i]));
                         }
                     });
    install(true);
    return true;
}

bool terminationRequested() {
    return requested;
}

void ignoreBrokenPipes() {
    ::signal(SIGPIPE, SIG_IGN);
}

InterruptibleCalls::InterruptibleCalls() {
    install(false);
}

InterruptibleCalls::~InterruptibleCalls() {
    install(true);
}

} // namespace larkspur
