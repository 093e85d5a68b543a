// Every hotel transaction in one table: its message, its body, and the fields it sends beside
// the room, each with the rule it is checked by and the line logged when it fails. The buttons
// send by it and the script check foresees by it.
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"

#include <QHash>

namespace larkspur {

namespace {

QString nameForm(const QString& trimmed) {
    return verify_string(trimmed, 21, QStringLiteral("L"));
}

QString textForm(const QString& trimmed) {
    return verify_string(trimmed, 10, QStringLiteral("L"));
}

QString wakeupForm(const QString& trimmed) {
    QString time = trimmed;
    return get_wakeup_time(time);
}

QHash<QString, HotelTransaction> buildTable() {
    const ExtraField guestName{Field::Text1, nameForm, QStringLiteral("Invalid Name!")};
    const ExtraField transferRoom{Field::txt_suite_2, roomForm,
                                  QStringLiteral("Invalid Transfer Room Number!")};
    const ExtraField department{Field::txt_department, textForm,
                                QStringLiteral("Invalid Department!")};
    const ExtraField location{Field::txt_location, textForm, QStringLiteral("Invalid Location!")};
    // A bad amount deliberately reuses the name transaction's sentence.
    const ExtraField amount{Field::txt_credit, roomForm, QStringLiteral("Invalid Name!")};
    const ExtraField time{Field::txt_time, wakeupForm, QStringLiteral("Invalid Time!")};

    QHash<QString, HotelTransaction> table;
    const auto withText = [&](const QString& code, const ExtraField& text) {
        table.insert(code,
                     {.rule = sendRule(code), .body = codeTextAndRoom(code), .extras = {text}});
    };
    for (const char* code : {"CHK1", "CHK0", "MW 1", "MW 0"})
        table.insert(QString::fromLatin1(code), roomTransaction(QString::fromLatin1(code)));
    for (const char* code : {"NAM1", "NAM2", "NAM3"})
        withText(QString::fromLatin1(code), guestName);
    // The transfer room is checked before the name, but sent after the room.
    table.insert(QStringLiteral("NAM4"), {.rule = sendRule(QStringLiteral("NAM4")),
                                          .body =
                                              [](const RoomMessage& m) {
                                                  return QStringLiteral("NAM4 ") + m.extras.at(1) +
                                                         m.room + m.extras.at(0);
                                              },
                                          .extras = {transferRoom, guestName}});
    for (const char* code : {"DPT1", "DPT2", "DPT3"})
        withText(QString::fromLatin1(code), department);
    for (const char* code : {"LOC1", "LOC2", "LOC3"})
        withText(QString::fromLatin1(code), location);
    table.insert(QStringLiteral("LMT1"), {.rule = sendRule(QStringLiteral("LMT1")),
                                          .body =
                                              [](const RoomMessage& m) {
                                                  return QStringLiteral("LMT1 ") + m.room + u' ' +
                                                         m.extras.at(0);
                                              },
                                          .extras = {amount}});
    // The frame carries no blank after "WKP"; the failure lines do.
    table.insert(
        QStringLiteral("WKP"),
        {.rule = sendRule(QStringLiteral("WKP")),
         .body =
             [](const RoomMessage& m) { return QStringLiteral("WKP") + m.extras.at(0) + m.room; },
         .extras = {time},
         .reported =
             [](const RoomMessage& m) {
                 return QStringLiteral("WKP ") + m.extras.at(0) + m.room;
             }});
    // The level completes the code.
    for (const QChar level : QStringLiteral("012345"))
        table.insert(QStringLiteral("RST") + level,
                     {.rule = sendRule(QStringLiteral("RST")),
                      .body = codeAndRoom(QStringLiteral("RST") + level),
                      .noRoomLine = QStringLiteral("No valid room number")});
    return table;
}

} // namespace

const HotelTransaction& hotelTransaction(const QString& code) {
    static const QHash<QString, HotelTransaction> table = buildTable();
    const auto found = table.constFind(code);
    if (found == table.cend())
        qFatal("no hotel transaction %s", qPrintable(code));
    return *found;
}

} // namespace larkspur
