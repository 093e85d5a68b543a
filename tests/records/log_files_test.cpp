#include "common/qt_printers.h"
#include "records/log_files.h"
#include "records/log_view_list.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

QStringList entries(const LogViewList& list) {
    QStringList out;
    for (qsizetype i = 0; i < list.size(); ++i)
        out << list.entry(i).toString();
    return out;
}

TEST(LogFiles, SaveWritesEachEntryWithCrLfAndOpenAppends) {
    QTemporaryDir dir;
    const QString path = dir.filePath("traffic.log");
    LogViewList list;
    list.append(u"Sending -->    ENQ");
    list.append(u"");
    list.append(u"Received--> ACK");
    ASSERT_TRUE(saveLogFile(path, list));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("Sending -->    ENQ\r\n\r\nReceived--> ACK\r\n"));

    LogViewList read;
    read.append(u"kept");
    ASSERT_TRUE(appendLogFile(path, read));
    ASSERT_TRUE(appendLogFile(path, read));
    EXPECT_EQ(entries(read), QStringList({"kept", "Sending -->    ENQ", "", "Received--> ACK",
                                          "Sending -->    ENQ", "", "Received--> ACK"}));
}

TEST(LogFiles, OpenEndsLinesAtCrLfCrOrLf) {
    QTemporaryDir dir;
    const QString path = dir.filePath("mixed.log");
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("a\r\nb\rc\nd");
    f.close();
    LogViewList read;
    ASSERT_TRUE(appendLogFile(path, read));
    EXPECT_EQ(entries(read), QStringList({"a", "b", "c", "d"}));
}

TEST(LogFiles, FailuresChangeNothing) {
    QTemporaryDir dir;
    LogViewList empty;
    EXPECT_FALSE(saveLogFile(dir.filePath("no/such/dir/x.log"), empty));
    EXPECT_FALSE(appendLogFile(dir.filePath("missing.log"), empty));
    EXPECT_EQ(empty.size(), 0);
}

} // namespace
