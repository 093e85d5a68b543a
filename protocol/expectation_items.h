#pragma once

#include <QList>
#include <QString>

namespace larkspur {

// One entry of the wait and notify lists: what the PBX must send for the wait to be met, and how
// a met wait is recorded in a script.
struct ExpectationItem {
    QString item;           // "sts2", as the lists show it
    QString expected;       // the message text before the room; empty for a control item
    QString recordedPlain;  // after "WAIT ", before the room
    QString recordedNotice; // after "NTFY ", before the room
    bool hasRoom() const { return !expected.isEmpty(); }
    // The four characters after "WAIT " or "NTFY " by which the runner knows a recorded wait.
    QString scriptHead() const;
    // Where the room stands, counted from the start of the head; 0 for a control item.
    int roomOffset() const;
};

// The seventeen items in list order.
const QList<ExpectationItem>& expectationItems();
// The item named `item`, or nullptr.
const ExpectationItem* findExpectationItem(const QString& item);
// The room-bearing item a PBX message meets, as the waits compare it (the received text from STX
// to ETX, exactly), with the room it names (five characters) in `room`; or nullptr. The control
// items are met by the receiver's names, not by a message, so none is returned for them.
const ExpectationItem* expectationMetBy(const QString& message, QString* room);
// The item whose recorded plain wait starts with `head`, or nullptr. A notice recorded for
// "alt" ("ATL ") is known to none.
const ExpectationItem* findExpectationByScriptHead(const QString& head);

} // namespace larkspur
