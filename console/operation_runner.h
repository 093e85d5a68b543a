#pragma once

#include <QObject>

#include <functional>

namespace larkspur {

// Every operation started from a widget runs through here. Operations re-enter the event loop
// while they wait, so a click can start one while others are still on the stack; the depth says
// how many, and nothing may be torn down before it is back to 0.
class OperationRunner : public QObject {
    Q_OBJECT
public:
    // Runs `operation`, unless new operations are refused.
    void run(const std::function<void()>& operation);
    int depth() const { return m_depth; }

    // From now on run() does nothing (the window is closing).
    void refuseNew() { m_refusing = true; }

Q_SIGNALS:
    // The outermost operation has returned.
    void allReturned();

private:
    int m_depth = 0;
    bool m_refusing = false;
};

} // namespace larkspur
