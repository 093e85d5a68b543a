#include "protocol/expectation_items.h"

#include "protocol/frame.h"

namespace larkspur {

QString ExpectationItem::scriptHead() const {
    return hasRoom() ? recordedPlain.left(4) : item + u' ';
}

int ExpectationItem::roomOffset() const {
    return hasRoom() ? int(recordedPlain.size()) : 0;
}

const QList<ExpectationItem>& expectationItems() {
    // A control item is met by the control the receiver names; the others by the message with
    // the room of the first room field. "alt" records differently for the two waits.
    static const QList<ExpectationItem> items = [] {
        QList<ExpectationItem> list = {
            {"ack", {}, "ack", "ack"},
            {"nak", {}, "nak", "nak"},
            {"enq", {}, "enq", "enq"},
            {"rti", {}, "rti", "rti"},
            {"mr", "MR 0001", "MR 0001", "MR 0001"},
            {"mw1", "MW 1 ", "MW 1 ", "MW 1 "},
            {"mw0", "MW 0 ", "MW 0 ", "MW 0 "},
        };
        for (char digit = '1'; digit <= '9'; ++digit) {
            const QString text = QStringLiteral("STS%1 ").arg(QLatin1Char(digit));
            list.append({QStringLiteral("sts%1").arg(QLatin1Char(digit)), text, text, text});
        }
        list.append({"alt", "ALT1 ", "ALT ", "ATL "});
        return list;
    }();
    return items;
}

const ExpectationItem* findExpectationItem(const QString& item) {
    for (const ExpectationItem& entry : expectationItems())
        if (entry.item == item)
            return &entry;
    return nullptr;
}

const ExpectationItem* expectationMetBy(const QString& message, QString* room) {
    constexpr qsizetype roomWidth = 5;
    if (!message.startsWith(QChar(ctl::STX)) || !message.endsWith(QChar(ctl::ETX)))
        return nullptr;
    const QString text = message.mid(1, message.size() - 2);
    for (const ExpectationItem& entry : expectationItems()) {
        if (entry.hasRoom() && text.size() == entry.expected.size() + roomWidth &&
            text.startsWith(entry.expected)) {
            *room = text.right(roomWidth);
            return &entry;
        }
    }
    return nullptr;
}

const ExpectationItem* findExpectationByScriptHead(const QString& head) {
    for (const ExpectationItem& entry : expectationItems())
        if (entry.scriptHead() == head)
            return &entry;
    return nullptr;
}

} // namespace larkspur
