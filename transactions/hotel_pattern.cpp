#include "transactions/hotel_pattern.h"

#include "core/operator_interface.h"
#include "protocol/message_catalogue.h"
#include "transactions/field_validation.h"
#include "transactions/session.h"
#include "transactions/session_press.h"

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

QString sentForm(const PressInput& input, Field field, QString (*check)(const QString&)) {
    const QString typed = input.text(field);
    return input.errorMode ? typed : check(trimBlanks(typed));
}

void pressRooms(const HotelTransaction& transaction, const PressInput& input, PressSteps& steps) {
    bool frameSent = false;
    for (Field roomField : roomFields) {
        RoomMessage message{sentForm(input, roomField, roomForm), {}};
        // In error mode a malformed room goes out on purpose, but an empty field is still skipped.
        const bool sendable =
            !message.room.isEmpty() && (message.room != NotValid || input.errorMode);
        if (!sendable) {
            // Told once, for the five fields, of which the first is the room of a script line.
            if (!frameSent && roomField == roomFields.back())
                steps.refuse({roomFields.front(), transaction.noRoomLine});
            continue;
        }
        PressMessage out;
        out.fields.append({roomField, message.room});
        const ExtraField* invalid = nullptr;
        for (const ExtraField& extra : transaction.extras) {
            message.extras.append(sentForm(input, extra.source, extra.check));
            if (!input.errorMode && message.extras.last() == NotValid) {
                invalid = &extra;
                break;
            }
            out.fields.append({extra.source, message.extras.last()});
        }
        if (invalid) {
            steps.refuse({invalid->source, invalid->invalidLine});
            continue;
        }
        frameSent = true;
        out.body = transaction.body(message);
        out.reported = transaction.reported ? transaction.reported(message) : out.body;
        if (!steps.send(out))
            return;
    }
}

void pressHotel(const QString& code, const PressInput& input, PressSteps& steps) {
    pressRooms(hotelTransaction(code), input, steps);
}

PressInput sessionInput(Session& session) {
    return {.text = [&session](Field field) { return session.fields().text(field); },
            .errorMode = session.state().errorMode,
            .protocol = session.link().protocolType()};
}

void SessionPress::refuse(const FieldRefusal& refusal) {
    if (refusal.notice)
        m_session.operatorInterface().notify(refusal.text);
    else
        m_session.log().logLine(refusal.text);
    m_said.append(refusal.text);
    Q_EMIT m_session.events().fieldRefused(refusal.text);
}

bool SessionPress::send(const PressMessage& message) {
    m_sent = true;
    return deliver(message);
}

bool SessionPress::report(SendResult result, const QString& message) {
    Q_EMIT m_session.events().transactionEnded(result, message);
    return result == SendResult::Acknowledged || result == SendResult::AcknowledgedByStaleAck;
}

void SessionPress::keepVmailMessage(const QString& frame) {
    m_session.m_lastVmailMessage = frame;
}

void SessionPress::finish() {
    if (!m_sent && !m_said.isEmpty())
        Q_EMIT m_session.events().pressRefused(m_said.join(QLatin1Char('\n')));
}

namespace {

// Every frame of one click shares one retry counter; each acknowledged frame is recorded.
class HotelPress : public SessionPress {
public:
    HotelPress(Session& session, const HotelMessageRule& rule)
        : SessionPress(session), m_rule(rule) {}

protected:
    bool deliver(const PressMessage& message) override {
        if (!report(sendHotelMessage(m_session.link(), m_session.errors(), m_rule, message.body,
                                     m_attempt, message.reported),
                    message.body))
            return false;
        m_session.recorder().record(message.body);
        return true;
    }

private:
    const HotelMessageRule& m_rule;
    int m_attempt = 1;
};

} // namespace

void sendHotelPress(Session& session, const HotelMessageRule& rule, const HotelPressSteps& press) {
    if (session.link().waitingForAck())
        return;
    HotelPress steps(session, rule);
    press(sessionInput(session), steps);
    steps.finish();
}

void sendToRooms(Session& session, const HotelTransaction& transaction) {
    sendHotelPress(session, transaction.rule,
                   [&transaction](const PressInput& input, PressSteps& steps) {
                       pressRooms(transaction, input, steps);
                   });
}

} // namespace larkspur
