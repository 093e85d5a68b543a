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
    const struct {
        const char* text;
        Outcome outcome;
        const char* address; // as read back
    } cases[] = {
        {"10.0.0.1", Outcome::Set, "10.0.0.1"},
        {"1.2.3.4.5", Outcome::Set, "1.2.3.4"},
        {"010.000.000.001", Outcome::Set, "10.0.0.1"},
        {" 192. 168.1 .7", Outcome::Set, "192.168.1.7"},
        {"255.255.255.255", Outcome::Set, "255.255.255.255"},
        {"1.2.3.4.junk", Outcome::Set, "1.2.3.4"},
        {"1234", Outcome::Ignored, ""},
        {"", Outcome::Ignored, ""},
        {"localhost", Outcome::Ignored, ""},
        {"1.2.3", Outcome::Invalid, ""},
        {"1.2.3.256", Outcome::Invalid, ""},
        {"1..3.4", Outcome::Invalid, ""},
        {"1.2.3.-4", Outcome::Invalid, ""},
        {"1.2.3.4x", Outcome::Invalid, ""},
        {"pbx.example.net", Outcome::Invalid, ""},
        {"99999999999.1.1.1", Outcome::Invalid, ""},
    };
    for (const auto& c : cases) {
        const AddressText parsed = parseAddressText(QString::fromLatin1(c.text));
        EXPECT_EQ(parsed.outcome, c.outcome) << c.text;
        EXPECT_EQ(parsed.error.isEmpty(), c.outcome != Outcome::Invalid) << c.text;
        if (c.outcome == Outcome::Set) {
            EXPECT_EQ(formatAddress(parsed.address), c.address) << c.text;
        }
    }
    EXPECT_EQ(parseAddressText("10.1.300.4").error,
              "part 3 of \"10.1.300.4\" (\"300\") is not a whole number from 0 to 255");
}

TEST(Ipv4Address, BytesMostSignificantFirst) {
    EXPECT_EQ(packAddress(192, 168, 1, 7), 0xC0A80107u);
    EXPECT_EQ(addressByte(0xC0A80107u, 0), 192);
    EXPECT_EQ(addressByte(0xC0A80107u, 3), 7);
    EXPECT_EQ(formatAddress(0), "0.0.0.0");
}

TEST(Ipv4Address, FieldRangeAsTheControlDecodesTheConsolesPacking) {
    const struct {
        int low, high;
        quint32 packed;
        FieldRange decoded;
    } cases[] = {
        {0, 255, 0x00FF0000u, {0, 0}},
        {10, 20, 0x0014000Au, {10, 0}},
        {0, 0, 0u, {0, 0}},
        {256, 255, 0x00FF0100u, {0, 1}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(packFieldRange(c.low, c.high), c.packed) << c.low << ".." << c.high;
        EXPECT_EQ(decodeFieldRange(c.packed), c.decoded) << c.low << ".." << c.high;
    }
    // Packed the way the control itself packs, the same limits come out whole.
    EXPECT_EQ(decodeFieldRange(20 * 256 + 10), (FieldRange{10, 20}));
}

TEST(Ipv4Address, FinishedEntryIsHeldToTheRange) {
    const struct {
        int value;
        FieldRange range;
        int result;
    } cases[] = {
        {192, {0, 255}, 192}, {300, {0, 255}, 255}, {192, {0, 0}, 0},
        {5, {10, 0}, 10},     {20, {10, 0}, 0},     {10, {10, 0}, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(constrainToRange(c.value, c.range), c.result)
            << c.value << " in " << c.range.low << ".." << c.range.high;
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
    EXPECT_EQ(control.Address(), "1.2.3.4");
    EXPECT_FALSE(control.IsBlank());

    EXPECT_EQ(control.setAddress("1234"), "") << "no dot: ignored";
    EXPECT_EQ(control.Address(), "1.2.3.4");
    EXPECT_NE(control.setAddress("1.2.3"), "") << "too few parts is reported";
    EXPECT_NE(control.setAddress("1.2.3.999"), "");
    EXPECT_EQ(control.Address(), "1.2.3.4") << "a refused text changes nothing";

    control.ClearAddress();
    EXPECT_TRUE(control.IsBlank());
    EXPECT_EQ(control.Address(), "0.0.0.0");

    finish(2, "7");
    EXPECT_FALSE(control.IsBlank()) << "one filled field is enough";
    EXPECT_EQ(control.Address(), "0.0.7.0");
}

TEST_F(IpControlWidget, TypedFieldsAreHeldToTheirRange) {
    finish(0, "300");
    EXPECT_EQ(field(0)->text(), "255");
    control.SetFieldRange(0, 255, 1);
    finish(1, "192");
    EXPECT_EQ(field(1)->text(), "0") << "the console's packing leaves the high limit 0";
    control.SetFieldRange(10, 20, 2);
    finish(2, "5");
    EXPECT_EQ(field(2)->text(), "10");
    control.SetFieldRange(0, 255, 7);
    finish(3, "255");
    EXPECT_EQ(field(3)->text(), "255") << "a field index out of range changes nothing";
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
        {"", "255.255.1.1", "255.255.1.1"},
        {"", "1.2.3.4", "1.2.3.4"},
        {"", "..7", "7.0.0.0"}, // a dot in an empty field stays there
        {"127.0.0.1", "192.168.10.200", "192.168.10.200"},
        {"127.0.0.1", "192.168.1.20", "192.168.1.20"},
        {"127.0.0.1", "10.1.2.3", "10.1.2.3"},
        {"255.255.255.255", "1.22.133.4", "1.22.133.4"},
        {"10.20.30.40", "192.0.2.1", "192.0.2.1"},
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
    control.SetFieldFocus(1);
    EXPECT_EQ(QApplication::focusWidget(), field(1));
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
