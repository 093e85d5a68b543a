#include "common/qt_printers.h"
#include "console/traffic_lines.h"
#include "console/traffic_view.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

QStringList linesOf(const LineSource& source) {
    QStringList l;
    for (qsizetype i = 0; i < source.lineCount(); ++i)
        l.append(source.line(i));
    return l;
}

struct Insert {
    const char* text;
    bool replaceLast;
};

TEST(TrafficLines, InsertsAtTheEndAndReplacesTheLastCharacter) {
    const struct {
        QList<Insert> inserts;
        QStringList lines;
    } cases[] = {
        {{{"abc\r\n", false}}, {"abc"}},
        {{{"abc", false}}, {"abc"}},
        {{{"ab", false}, {"c\r\n", false}}, {"abc"}},
        {{{"a\r\n\r\nb\r\n", false}}, {"a", "", "b"}},
        {{{"abc", false}, {"X\r\n", true}}, {"abX"}},
        {{{"X\r\n", true}}, {"X"}},
        // After a line end the last character is its LF; the CR still ends the line.
        {{{"abc\r\n", false}, {"X\r\n", true}}, {"abc", "X"}},
        {{{"abc\r\n", false}, {"X\r\n", true}, {"Y", true}}, {"abc", "X", "Y"}},
        {{{"abc\r\n", false}, {"X\r\n", true}, {"Y", true}, {"", true}}, {"abc", "X"}},
        // Taking away a lone CR joins the line to the one before.
        {{{"abc\r\n", false}, {"X\r\n", true}, {"Y", true}, {"", true}, {"W", true}},
         {"abc", "XW"}},
    };
    for (const auto& c : cases) {
        TrafficLines lines;
        for (const Insert& insert : c.inserts)
            lines.insertAtEnd(QString::fromLatin1(insert.text), insert.replaceLast);
        EXPECT_EQ(linesOf(lines), c.lines) << c.lines.join(u'|').toStdString();
    }
}

class TrafficViewTest : public ::testing::Test {
protected:
    TrafficView view;
    TrafficLog log;
    void SetUp() override {
        view.resize(600, 300);
        view.show();
        log.setDisplay(&view);
    }
};

TEST_F(TrafficViewTest, ManyLinesAreAllThereWithTheNewestInViewAndArriveUnasked) {
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i)
        view.insertAtEnd(QStringLiteral("Received--> STS1 %1\r\n").arg(i, 5), false);
    EXPECT_EQ(view.model()->rowCount(), 0) << "rows are announced in batches";
    view.syncNow();
    ASSERT_EQ(view.model()->rowCount(), count);
    EXPECT_EQ(view.model()->index(count - 1, 0).data().toString(), "Received--> STS1   999");
    EXPECT_GT(view.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
    view.clear();
    EXPECT_EQ(view.model()->rowCount(), 0);
    log.logLine(QStringLiteral("after clear"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.model()->rowCount() == 1; }, 2000));
    EXPECT_EQ(view.model()->index(0, 0).data().toString(), "after clear");
}

TEST_F(TrafficViewTest, CtrlCCopiesTheSelectedLinesInOrder) {
    for (const char* line : {"zero", "one", "two", "three", "four"})
        log.logLine(QString::fromLatin1(line));
    view.syncNow();
    auto* selection = view.selectionModel();
    const auto rows = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    selection->select(view.model()->index(4, 0), rows);
    selection->select(QItemSelection(view.model()->index(1, 0), view.model()->index(2, 0)), rows);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "one\ntwo\nfour");
}

} // namespace
