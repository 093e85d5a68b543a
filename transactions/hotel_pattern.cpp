#include "transactions/hotel_pattern.h"

#include "protocol/message_catalogue.h"
#include "transactions/field_validation.h"
#include "transactions/session.h"

namespace larkspur {

HotelMessageRule sendRule(const QString& code) {
    const HotelMessage& message = hotelMessage(code);
    return {.logPrefix = message.logPrefix,
            .failureSentence = message.failureSentence,
            .ackNeedsPoll = message.ackNeedsPoll,
            .enqFailureCounts = message.enqFailureCounts,
            .enqFailureLogTimed = message.enqFailureLogTimed};
}

MessageText codeAndRoom(const QString& code) {
    return [header = code + u' '](const RoomMessage& m) { return header + m.room; };
}

MessageText codeTextAndRoom(const QString& code) {
    return
        [header = code + u' '](const RoomMessage& m) { return header + m.extras.at(0) + m.room; };
}

HotelTransaction roomTransaction(const QString& code) {
    return {.rule = sendRule(code), .body = codeAndRoom(code)};
}

QString roomForm(const QString& trimmed) {
    return verify_string(trimmed, 5, QStringLiteral("R"));
}

QString sentForm(const Session& session, Field field, QString (*check)(const QString&)) {
    const QString& typed = session.fields.text(field);
    return session.errorMode() ? typed : check(trimBlanks(typed));
}

void sendToRooms(Session& session, const HotelTransaction& transaction) {
    Link& link = session.link;
    if (link.waitingForAck())
        return;
    bool frameSent = false;
    int attempt = 1;
    for (Field roomField : roomFields) {
        RoomMessage message{sentForm(session, roomField, roomForm), {}};
        // In error mode a malformed room goes out on purpose, but an empty field is still skipped.
        const bool sendable =
            !message.room.isEmpty() && (message.room != NotValid || session.errorMode());
        if (!sendable) {
            if (!frameSent && roomField == roomFields.back())
                session.log.logLine(transaction.noRoomLine);
            continue;
        }
        const ExtraField* invalid = nullptr;
        for (const ExtraField& extra : transaction.extras) {
            message.extras.append(sentForm(session, extra.source, extra.check));
            if (!session.errorMode() && message.extras.last() == NotValid) {
                invalid = &extra;
                break;
            }
        }
        if (invalid) {
            session.log.logLine(invalid->invalidLine);
            continue;
        }
        frameSent = true;
        const QString body = transaction.body(message);
        const QString reported = transaction.reported ? transaction.reported(message) : body;
        if (!session.reportSent(
                sendHotelMessage(link, session.errors, transaction.rule, body, attempt, reported),
                body))
            return;
        session.recorder.record(body);
    }
}

} // namespace larkspur
