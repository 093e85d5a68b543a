#include "core/qt_event_pump.h"

#include "core/clock_start.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <chrono>

namespace larkspur {

namespace {
QAbstractEventDispatcher* dispatcher() {
    return QAbstractEventDispatcher::instance(QThread::currentThread());
}
} // namespace

void useLeanEventDispatcher() {
    if (!qEnvironmentVariableIsSet("QT_NO_GLIB"))
        qputenv("QT_NO_GLIB", "1");
}

QtEventPump::QtEventPump() {
    m_startDateTime = clockStart();
    m_elapsed.start();
}

double QtEventPump::monotonicSeconds() const {
    return double(m_elapsed.nsecsElapsed()) / 1e9;
}

QDateTime QtEventPump::currentDateTime() const {
    return m_startDateTime.addMSecs(m_elapsed.elapsed());
}

void QtEventPump::processEvents() {
    QCoreApplication::processEvents();
}

bool QtEventPump::waitForEvent(int milliseconds) {
    auto* d = dispatcher();
    if (!d)
        return false;
    if (milliseconds <= 0)
        return d->processEvents(QEventLoop::AllEvents);

    // A precise single-shot timer bounds the block; whatever else wakes the loop is an event.
    // The timer is local so that a wait nested inside another keeps the outer one's deadline.
    bool timedOut = false;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&timedOut] { timedOut = true; });
    timer.start(milliseconds);
    while (!d->processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents)) {
        if (timedOut)
            break;
    }
    return !timedOut;
}

void QtEventPump::schedule(qint64 delayMs, QObject* context, std::function<void()> task) {
    QTimer::singleShot(std::chrono::milliseconds(qMax<qint64>(0, delayMs)), Qt::PreciseTimer,
                       context, std::move(task));
}

} // namespace larkspur
