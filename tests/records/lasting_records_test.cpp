// What a week-long run keeps: nothing per line or per record where the player streams them.
#include "records/error_records.h"
#include "records/log_files.h"
#include "records/log_view_list.h"
#include "records/traffic_log.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

class Collecting : public TrafficDisplay {
public:
    QString text;
    void insertAtEnd(const QString& t, bool) override { text += t; }
    void clear() override {}
};

TEST(LastingRecords, ATrafficLogThatKeepsNoHistoryStillShowsEverything) {
    TrafficLog log;
    Collecting display;
    log.setDisplay(&display);
    log.keepHistory(false);
    for (int i = 0; i < 1000; ++i)
        log.logLine(QStringLiteral("Received--> ACK"));
    EXPECT_EQ(display.text.size(), 1000 * 17);
    EXPECT_EQ(log.viewerList().size(), 0);
    EXPECT_TRUE(log.logText().isEmpty());
    EXPECT_EQ(log.logCaret(), 1000 * 17) << "a leading backspace still has a last character";
}

TEST(LastingRecords, AStreamedLogFileHoldsTheLinesASavedOneDoes) {
    const QString logged[] = {"Connected...\r\n", "two\r\nlines\r\n", "no line end", "x", "\r\n"};
    TrafficLog log;
    QByteArray streamed;
    for (const QString& text : logged) {
        QString cleaned = text;
        log.ShowDebug(cleaned);
        streamed += logFileLine(cleaned);
    }
    QTemporaryDir dir;
    const QString path = dir.filePath("saved.log");
    ASSERT_TRUE(saveLogFile(path, log.viewerList()));
    QFile saved(path);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(streamed, saved.readAll());
}

TEST(LastingRecords, ErrorsAreCountedPastTheSixteenBitWrap) {
    ErrorRecords errors;
    errors.keepReport(false);
    int announced = 0;
    QObject::connect(&errors, &ErrorRecords::errorRecorded, [&] { ++announced; });
    for (int i = 0; i < 65536; ++i)
        errors.recordError(QStringLiteral("failed\n"), true);
    EXPECT_EQ(errors.errorCount(), 0) << "the count the console shows wraps as it always did";
    EXPECT_EQ(errors.countedSinceReset(), 65536);
    EXPECT_EQ(announced, 65536);
    EXPECT_TRUE(errors.errorReport().isEmpty());
    errors.resetErrors();
    EXPECT_EQ(errors.countedSinceReset(), 0);
}

} // namespace
