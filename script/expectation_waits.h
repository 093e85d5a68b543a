#pragma once

#include <QString>

namespace larkspur {

class Session;

// The expected messages a wait can name, in the order of the lists.
bool isExpectationItem(const QString& item);

// The digit a wait runs by, for the text it is given (a script line's digit, the wake-up time
// field for the lists): the text when it is one digit 0-9, else "5". A met wait records it.
QString waitDigit(const QString& text);
// The time of a wait in seconds for that digit: 0 means no limit.
int waitSeconds(const QString& text);

enum class WaitKind { Plain, WithNotice };

// Holds the console until the PBX sends `item` or the wait's time (the digit; "0" is no limit,
// anything but a digit is 5) runs out, or a stop is asked for in `stopScript`, which the wait
// clears as it ends.
void runExpectationWait(Session& session, WaitKind kind, const QString& item, const QString& digit,
                        bool& stopScript);

} // namespace larkspur
