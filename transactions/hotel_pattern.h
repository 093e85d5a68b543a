#pragma once

#include "link/link.h"
#include "protocol/frame.h"
#include "transactions/fields.h"
#include "transactions/press_steps.h"
#include "transactions/send_sequences.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace larkspur {

class Session;

// One room's message in the making: the room and the extra fields, each in the form it is sent
// in, the extras in the order the transaction lists them.
struct RoomMessage {
    QString room;
    QStringList extras;
};

using MessageText = std::function<QString(const RoomMessage&)>;

// A field sent beside the room (name, department, amount, time), read afresh for every room.
struct ExtraField {
    Field source;
    // The sent form of the blank-trimmed text, or NotValid.
    QString (*check)(const QString& trimmed);
    QString invalidLine;
};

// What sets one hotel transaction apart; sendToRooms does the rest.
struct HotelTransaction {
    HotelMessageRule rule;
    MessageText body;
    // Checked in this order for every usable room; the first that fails is logged and the room
    // skipped.
    std::vector<ExtraField> extras = {};
    // What the failure lines show for the message, when it is not the body.
    MessageText reported = {};
    QString noRoomLine = QStringLiteral("no valid room number");
};

// The send rule of the catalogue's message `code`.
HotelMessageRule sendRule(const QString& code);

// Bodies of the common shapes: code, blank, room; and code, blank, first extra, room.
MessageText codeAndRoom(const QString& code);
MessageText codeTextAndRoom(const QString& code);

// A transaction of the catalogue's message `code` whose body is code, blank and room.
HotelTransaction roomTransaction(const QString& code);

// Every hotel transaction by its catalogue code: "CHK1", "NAM4", "WKP", "RST" + the level. A code
// the table does not hold is a programming error.
const HotelTransaction& hotelTransaction(const QString& code);

// The field as the transaction sends it: as typed in error mode, else blank-trimmed and checked.
QString sentForm(const PressInput& input, Field field, QString (*check)(const QString&));

// One press of the transaction: every usable room field in order, each room's extra fields
// checked, one message per room. A room field that is empty (or, outside error mode, invalid) is
// skipped; when the last one is skipped and nothing was sent, `noRoomLine` is refused.
void pressRooms(const HotelTransaction& transaction, const PressInput& input, PressSteps& steps);

// The session's reading of its own fields for a press.
PressInput sessionInput(Session& session);

// One press of a hotel button: the steps that read its fields and name its messages.
using HotelPressSteps = std::function<void(const PressInput& input, PressSteps& steps)>;

// Sends every message of `press` by the hotel sequence of `rule`, one ENQ exchange and one frame
// each, all frames of the click sharing one retry counter; nothing while a wait runs. The first
// failure ends the click; each acknowledged frame is recorded.
void sendHotelPress(Session& session, const HotelMessageRule& rule, const HotelPressSteps& press);

// The transaction to every usable room field in order.
void sendToRooms(Session& session, const HotelTransaction& transaction);

} // namespace larkspur
