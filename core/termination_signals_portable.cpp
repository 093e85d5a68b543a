// Termination signals with the C library alone, for platforms without POSIX signals: the
// handler sets a flag that a light timer in the event loop looks at.
#include "core/termination_signals.h"

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <csignal>

namespace larkspur {

namespace {
constexpr int lookEveryMs = 100;
std::atomic<int> pending{0};
std::atomic<bool> requested{false};

void onSignal(int number) {
    requested = true;
    pending = number;
    std::signal(number, onSignal); // some platforms reset the handler on delivery
}

Termination termination(int number) {
#ifdef SIGHUP
    if (number == SIGHUP)
        return Termination::HangUp;
#endif
    return number == SIGTERM ? Termination::Terminate : Termination::Interrupt;
}
} // namespace

bool watchTerminationSignals(std::function<void(Termination)> handler, QString*) {
    auto* timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, [handler = std::move(handler)] {
        if (const int number = pending.exchange(0))
            handler(termination(number));
    });
    timer->start(lookEveryMs);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
#ifdef SIGHUP
    std::signal(SIGHUP, onSignal);
#endif
    return true;
}

bool terminationRequested() {
    return requested;
}

void ignoreBrokenPipes() {
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

// Without POSIX signals a blocking call cannot be cut short; the flag is looked at after it.
InterruptibleCalls::InterruptibleCalls() = default;
InterruptibleCalls::~InterruptibleCalls() = default;

} // namespace larkspur
