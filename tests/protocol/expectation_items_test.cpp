// Which PBX messages a wait can expect, read back from the message itself.
#include "protocol/expectation_items.h"
#include "protocol/frame.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(ExpectationItems, APbxMessageNamesTheItemItMeetsAndItsRoom) {
    const struct {
        QString message;
        const char* item; // nullptr: meets none
        QString room;
    } cases[] = {
        {plain_frame("STS2   101"), "sts2", "  101"},
        {plain_frame("STS9   101"), "sts9", "  101"},
        {plain_frame("MR 0001  101"), "mr", "  101"},
        {plain_frame("MW 0 12345"), "mw0", "12345"},
        {plain_frame("MW 1   101"), "mw1", "  101"},
        {plain_frame("ALT1   101"), "alt", "  101"},
        {plain_frame("STS2  101"), nullptr, ""},   // a room of four characters
        {plain_frame("STS2   1011"), nullptr, ""}, // and of six
        {plain_frame("MR 0002  101"), nullptr, ""},
        {"STS2   101", nullptr, ""}, // not framed
        {plain_frame("STS2   101") + "\x05", nullptr, ""},
        {rqinzFrame(), nullptr, ""}, // a control item: met by the receiver's name
        {QString(QChar(ctl::ACK)), nullptr, ""},
    };
    for (const auto& c : cases) {
        QString room;
        const ExpectationItem* item = expectationMetBy(c.message, &room);
        EXPECT_EQ(item ? item->item : QString(), c.item ? QString(c.item) : QString())
            << c.message.toStdString();
        EXPECT_EQ(room, c.room) << c.message.toStdString();
    }
}

} // namespace
