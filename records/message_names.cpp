#include "records/message_names.h"

#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "protocol/message_catalogue.h"
#include "protocol/readable_notation.h"

namespace larkspur {

namespace {

const QString unknown = QStringLiteral("unknown message");

// A field of a message as the trace shows it: without its blanks, and in the readable notation,
// so that control bytes in it reach no terminal.
QString shown(const QString& field) {
    return toReadable(trimBlanks(field).toLatin1());
}

QString pbxRow(Side from, const QString& type) {
    return from == Side::Pbx ? QStringLiteral("PBX ") + type : type;
}

// "voice mail 7 move mailbox mailbox 4001 to 4002": the operation and its fields.
MessageName vmailName(const QByteArray& frame, Side from) {
    const QString body = QString::fromLatin1(frame.mid(1, frame.size() - 3));
    const VmailMessage* message = findVmailMessage(body.left(1));
    const QString type =
        message ? message->name : QStringLiteral("voice mail ") + toReadable(frame.mid(1, 1));
    QString description = type;
    if (message) {
        if (message->hasMailbox)
            description += QStringLiteral(" mailbox ") + shown(body.mid(1, mailboxWidth));
        if (message->extraWidth > 0) {
            // " TO: " reads "to", " FCOS: " reads "fcos".
            QString label = message->extraLabel.trimmed().toLower();
            label.chop(1);
            description +=
                u' ' + label + u' ' + shown(body.mid(1 + mailboxWidth, message->extraWidth));
        }
    }
    return {description, pbxRow(from, type)};
}

// "check-in room 101", "linked suite STE1 pilot 101", "are you there".
MessageName pmsHotelName(const QString& body) {
    const HotelMessage* message = hotelMessageOfBody(body);
    if (!message)
        return {unknown, unknown};
    QString description = message->name;
    if (message->code == u"STE")
        description += u' ' + body.left(4) + QStringLiteral(" pilot ") + shown(body.mid(5, 5));
    for (const FieldColumn& column : message->columns)
        if (column.field == Field::txt_suite_1)
            description +=
                QStringLiteral(" room ") + shown(body.mid(column.column - 1, column.width));
    return {description, message->name};
}

// "STS2 room 101", "RQINZ": the PBX's own messages.
MessageName pbxHotelName(const QByteArray& frame) {
    const QString text = QString::fromLatin1(frame);
    QString room;
    if (const ExpectationItem* item = expectationMetBy(text, &room)) {
        const QString name = item->expected.trimmed();
        return {name + QStringLiteral(" room ") + shown(room), pbxRow(Side::Pbx, name)};
    }
    if (text == rqinzFrame())
        return {QStringLiteral("initialisation request RQINZ"),
                pbxRow(Side::Pbx, QStringLiteral("RQINZ"))};
    return {unknown, pbxRow(Side::Pbx, unknown)};
}

} // namespace

MessageName frameName(const QByteArray& frame, Side from, PmsMode mode) {
    if (mode == PmsMode::Vmail)
        return vmailName(frame, from);
    if (from == Side::Pbx)
        return pbxHotelName(frame);
    return pmsHotelName(QString::fromLatin1(frame.mid(1, frame.size() - 2)));
}

QString enqType(Side from) {
    return pbxRow(from, QStringLiteral("ENQ"));
}

} // namespace larkspur
