#include "tap/message_names.h"

#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "protocol/message_catalogue.h"
#include "records/wire_trace.h"

namespace larkspur::tap {

namespace {

const QString unknown = QStringLiteral("unknown message");

QString pbxRow(Side from, const QString& type) {
    return from == Side::Pbx ? QStringLiteral("PBX ") + type : type;
}

// "voice mail 7 move mailbox mailbox 4001 to 4002": the operation and its fields.
MessageName vmailName(const QByteArray& frame, Side from) {
    const QString type = WireTrace::messageType(frame, true);
    QString description = type;
    const QString body = QString::fromLatin1(frame.mid(1, frame.size() - 3));
    if (const VmailMessage* message = findVmailMessage(body.left(1))) {
        if (message->hasMailbox)
            description += QStringLiteral(" mailbox ") + body.mid(1, mailboxWidth).trimmed();
        if (message->extraWidth > 0) {
            // " TO: " reads "to", " FCOS: " reads "fcos".
            QString label = message->extraLabel.trimmed().toLower();
            label.chop(1);
            description +=
                u' ' + label + u' ' + body.mid(1 + mailboxWidth, message->extraWidth).trimmed();
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
        description += u' ' + body.left(4) + QStringLiteral(" pilot ") + body.mid(5, 5).trimmed();
    for (const FieldColumn& column : message->columns)
        if (column.field == Field::txt_suite_1)
            description +=
                QStringLiteral(" room ") + body.mid(column.column - 1, column.width).trimmed();
    return {description, message->name};
}

// "STS2 room 101", "RQINZ": the PBX's own messages.
MessageName pbxHotelName(const QByteArray& frame) {
    const QString text = QString::fromLatin1(frame);
    QString room;
    if (const ExpectationItem* item = expectationMetBy(text, &room)) {
        const QString name = item->expected.trimmed();
        return {name + QStringLiteral(" room ") + room.trimmed(), pbxRow(Side::Pbx, name)};
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

bool checkCharacterRight(const QByteArray& frame) {
    if (frame.size() < 3 || frame.at(frame.size() - 2) != char(ctl::ETX))
        return false;
    return CRC(QString::fromLatin1(frame.mid(1, frame.size() - 2))).at(0).unicode() ==
           quint8(frame.back());
}

} // namespace larkspur::tap
