#include "common/qt_printers.h"
#include "console/ip_control.h"
#include "console/ipv4_address.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

using namespace larkspur;
using Outcome = AddressText::Outcome;

namespace {

TEST(Ipv4Address, WritingAnAddressText) {
    const std::pair<const char*, const char*> set[] = {{"10.0.0.1", "10.0.0.1"},
                                                       {"1.2.3.4.5", "1.2.3.4"},
                                                       {"010.000.000.001", "10.0.0.1"},
                                                       {" 192. 168.1 .7", "192.168.1.7"},
                                                       {"255.255.255.255", "255.255.255.255"}};
    for (const auto& [text, address] : set) {
        const AddressText parsed = parseAddressText(text);
        EXPECT_EQ(parsed.outcome, Outcome::Set) << text;
        EXPECT_EQ(formatAddress(parsed.address), address) << text;
    }
    for (const char* text : {"1234", "", "localhost"})
        EXPECT_EQ(parseAddressText(text).outcome, Outcome::Ignored) << text;
    for (const char* text : {"1.2.3", "1.2.3.256", "1..3.4", "1.2.3.-4", "1.2.3.4x",
                             "pbx.example.net", "99999999999.1.1.1"}) {
        EXPECT_EQ(parseAddressText(text).outcome, Outcome::Invalid) << text;
        EXPECT_NE(parseAddressText(text).error, "") << text;
    }
    EXPECT_EQ(parseAddressText("10.1.300.4").error,
              "part 3 of \"10.1.300.4\" (\"300\") is not a whole number from 0 to 255");
}

// The console packs a field's range as high x 65536 + low, and the control reads the high limit
// from the second byte, which that packing leaves 0: every limit but the low one is lost.
TEST(Ipv4Address, FieldRangeAsTheControlDecodesTheConsolesPacking) {
    const struct {
        int low, high;
        quint32 packed;
        FieldRange decoded;
    } cases[] = {
        {0, 255, 0x00FF0000u, {0, 0}},
        {10, 20, 0x0014000Au, {10, 0}},
        {256, 255, 0x00FF0100u, {0, 1}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(packFieldRange(c.low, c.high), c.packed) << c.low << ".." << c.high;
        EXPECT_EQ(decodeFieldRange(c.packed), c.decoded) << c.low << ".." << c.high;
    }
    EXPECT_EQ(decodeFieldRange(20 * 256 + 10), (FieldRange{10, 20})) << "the control's own packing";
    EXPECT_EQ(constrainToRange(300, {0, 255}), 255);
    EXPECT_EQ(constrainToRange(192, {0, 0}), 0);
    EXPECT_EQ(constrainToRange(5, {10, 0}), 10);
}

class IpControlWidget : public ::testing::Test {
protected:
    IPControl control;
    QLineEdit* field(int i) {
        return control.findChild<QLineEdit*>(QStringLiteral("field_%1").arg(i));
    }
    void finish(int i, const QString& typed) {
        field(i)->clear();
        QTest::keyClicks(field(i), typed);
        Q_EMIT field(i)->editingFinished();
    }
};

TEST_F(IpControlWidget, ReadWriteAndBlank) {
    EXPECT_TRUE(control.IsBlank());
    EXPECT_EQ(control.Address(), "0.0.0.0") << "an empty control reads as 0.0.0.0";
    EXPECT_EQ(control.setAddress("1.2.3.4.5"), "");
    EXPECT_EQ(control.setAddress("1234"), "") << "no dot: ignored";
    EXPECT_NE(control.setAddress("1.2.3.999"), "");
    EXPECT_EQ(control.Address(), "1.2.3.4") << "an ignored or refused text changes nothing";
    control.ClearAddress();
    EXPECT_TRUE(control.IsBlank());
    finish(2, "7");
    EXPECT_FALSE(control.IsBlank()) << "one filled field is enough";
    finish(0, "300");
    EXPECT_EQ(control.Address(), "255.0.7.0") << "a finished field is held to 0-255";
}

TEST_F(IpControlWidget, TypingMovesFromFieldToField) {
    control.show();
    QApplication::setActiveWindow(&control);
    control.SetFieldFocus(0);
    ASSERT_EQ(QApplication::focusWidget(), field(0));
    // Over the stored address the first field is selected and the address typed.
    const struct {
        const char* stored;
        const char* typed;
        const char* address;
    } cases[] = {
        {"", "10.1.255.7", "10.1.255.7"},
        {"", "..7", "7.0.0.0"}, // a dot in an empty field stays there
        {"127.0.0.1", "192.168.10.200", "192.168.10.200"},
        {"255.255.255.255", "1.22.133.4", "1.22.133.4"},
    };
    for (const auto& c : cases) {
        control.ClearAddress();
        control.setAddress(c.stored);
        control.SetFieldFocus(0);
        for (QChar ch : QString::fromLatin1(c.typed))
            QTest::keyClicks(QApplication::focusWidget(), QString(ch));
        EXPECT_EQ(control.Address(), c.address) << c.stored << " typed over with " << c.typed;
    }
    EXPECT_EQ(QApplication::focusWidget(), field(3));
    QTest::keyClick(field(3), Qt::Key_Backspace);
    QTest::keyClick(field(3), Qt::Key_Backspace);
    EXPECT_EQ(QApplication::focusWidget(), field(2)) << "Backspace in an empty field goes back";
}

TEST_F(IpControlWidget, APastedAddressLandsFieldByFieldOrNotAtAll) {
    control.show();
    QApplication::setActiveWindow(&control);
    const auto pasteWithKeys = [&](int f) {
        QTest::keyClick(field(f), Qt::Key_V, Qt::ControlModifier);
    };
    const auto pasteFromMenu = [&](int f) {
        QTimer::singleShot(0, [] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            for (QAction* entry : menu->actions())
                if (entry->text().startsWith("&Paste"))
                    entry->trigger();
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(2, 2),
                                field(f)->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(field(f), &event);
    };
    const struct {
        const char* clipboard;
        int intoField;
        const char* address;
    } cases[] = {
        {"192.168.10.200", 0, "192.168.10.200"},
        {" 10.0.0.9\n", 0, "10.0.0.9"},
        {"10.20", 2, "127.0.10.20"},
        // Refused whole: nothing changes.
        {"192.168.1.300", 0, "127.0.0.1"},
        {"1.2.3.4", 1, "127.0.0.1"},
        {"pbx.example.net", 0, "127.0.0.1"},
    };
    for (const auto& [how, paste] :
         {std::pair<const char*, std::function<void(int)>>{"keys", pasteWithKeys},
          {"menu", pasteFromMenu}}) {
        for (const auto& c : cases) {
            control.setAddress("127.0.0.1");
            control.SetFieldFocus(c.intoField);
            QApplication::clipboard()->setText(c.clipboard);
            paste(c.intoField);
            EXPECT_EQ(control.Address(), c.address) << how << ": " << c.clipboard;
        }
    }
}

} // namespace
