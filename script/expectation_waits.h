#pragma once

#include <QString>

namespace larkspur {

class Session;

// The expected messages a wait can name, in the order of the lists.
bool isExpectationItem(const QString& item);

// The time of a wait in seconds for its digit: 0 means no limit; anything but a digit counts as
// 5, and `digit` becomes "5", as a met wait records it.
int waitSeconds(QString& digit);

enum class WaitKind { Plain, WithNotice };

// Holds the console until the PBX sends `item` or the wait's time (the digit; "0" is no limit,
// anything but a digit is 5) runs out, or a stop is asked for.
void runExpectationWait(Session& session, WaitKind kind, const QString& item, QString digit);

} // namespace larkspur
