#pragma once

#include "core/control.h"
#include "core/field.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace larkspur {

// Where a script line holds one field of a message: 1-based column, width, and the input field
// it fills.
struct FieldColumn {
    int column;
    int width;
    Field field;
};

// One message the console sends in hotel mode, and everything the console says about it.
struct HotelMessage {
    QString code;                   // what the frame body starts with: "CHK1", "MW 1", "WKP", "RST"
    QString name;                   // "check-in", in the wire trace and the run statistics
    Control button;                 // the control that sends it
    QString logPrefix;              // "Sending     -->", each with its own blanks
    QString failureSentence;        // "-> PBX DID NOT ACKnowkledge the Check in message:"
    bool ackNeedsPoll = false;      // check-in also polls and judges by the last control
    bool enqFailureCounts = true;   // restriction and linked suites leave the count alone
    bool enqFailureLogTimed = true; // restriction logs the ENQ failure without the time
    bool recorded = true;           // a recording gets its body; the manual link messages not
    // The first four characters of its script lines, and where those lines hold its fields;
    // none for a message the runner plays another way or not at all.
    QStringList scriptWords = {};
    QList<FieldColumn> columns = {};
};

// One mailbox operation in voice-mail mode, and its frame layout: the mailbox in six characters
// after the code, then the second field in `extraWidth` (0: none).
struct VmailMessage {
    QString code;                                 // "2"
    QString name;                                 // "voice mail 2 check-in"
    std::optional<Control> button = std::nullopt; // the control that sends it; none for the resync
    QString label; // the log line's head, before the mailbox: "CHECK IN: "
    bool hasMailbox = true;
    std::optional<Field> extra = std::nullopt;
    int extraWidth = 0;
    QString extraLabel = {};   // between mailbox and second field in the log line
    QString extraMissing = {}; // the notice when the second field is empty
};

// Every hotel message, in the order the console lists its buttons.
const QList<HotelMessage>& hotelMessages();
// Every voice-mail operation.
const QList<VmailMessage>& vmailMessages();

// The entry for `code`; a code the catalogue does not hold is a programming error.
const HotelMessage& hotelMessage(const QString& code);
// The entry for `code`, or nullptr.
const VmailMessage* findVmailMessage(const QString& code);
// The hotel message a frame body is (the first whose code it starts with), or nullptr.
const HotelMessage* hotelMessageOfBody(const QString& body);

// The notice when the mailbox field is empty (also when the destination mailbox is).
QString mailboxMissingNotice();

// The width of the mailbox after a voice-mail code.
constexpr int mailboxWidth = 6;

} // namespace larkspur
