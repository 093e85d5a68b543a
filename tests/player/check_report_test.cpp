// The --check report, written as the check walks, in text and in JSON.
#include "player/check_report.h"
#include "script/script_check.h"
#include "script/script_reader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

const QByteArray file = "; hotel\r\nCHK1   101\r\nWKP0799  101\r\n;\r\n";
// clang-format off
const QByteArray refusedRow = R"j({"column":1,"command":"WKP0","drives":"cmd_wakeup (wake-up)","fields":[{"control":"txt_time","firstColumn":4,"label":"time","lastColumn":7,"line":3,"text":"0799"},{"control":"txt_suite_1","firstColumn":8,"label":"room","lastColumn":12,"line":3,"text":"  101"}],"line":3,"plays":true,"refusals":["Invalid Time!","no valid room number"],"sends":[],"stops":false,"warned":true})j";
const QByteArray refusedFinding = R"j({"firstColumn":4,"kind":"refused","lastColumn":7,"lastLine":3,"level":"warning","line":3,"text":"WKP0 time (columns 4-7) \"0799\": the run logs \"Invalid Time!\" then \"no valid room number\" and sends nothing"})j";
// clang-format on

TEST(CheckReport, TextHasAHeaderTheRowsTheFindingsAndTheVerdict) {
    QByteArray text;
    const CheckVerdict verdict = writeCheckReportText(
        [&](const QByteArray& piece) { text += piece; }, "s.txt", readScript(file), {});
    EXPECT_EQ(verdict, CheckVerdict::Warnings);
    EXPECT_EQ(text,
              "s.txt: HOTEL script, protocol HYATT, commands reached: 2\n"
              "  2:1   CHK1  room 6-10 \"  101\"  -> cmd_chk_in (check-in)\n"
              "! 3:1   WKP0  time 4-7 \"0799\", room 8-12 \"  101\"  -> cmd_wakeup (wake-up)\n"
              "line 1: note: comment line, left out\n"
              "line 3: warning: WKP0 time (columns 4-7) \"0799\": the run logs \"Invalid Time!\" "
              "then \"no valid room number\" and sends nothing\n"
              "line 4: note: comment line, left out\n"
              "1 warning(s)\n");
}

TEST(CheckReport, JsonIsOneObjectAsQtWouldWriteIt) {
    QByteArray json;
    writeCheckReportJson([&](const QByteArray& piece) { json += piece; }, "s.txt", readScript(file),
                         {});
    QJsonParseError error{};
    const QJsonObject report = QJsonDocument::fromJson(json, &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << json.toStdString();
    // So tools see no change but the new members.
    EXPECT_EQ(QJsonDocument(report).toJson(QJsonDocument::Indented), json);
    const auto compact = [](const QJsonValue& v) {
        return QJsonDocument(v.toObject()).toJson(QJsonDocument::Compact);
    };
    EXPECT_EQ(report["verdict"].toString(), "warnings");
    EXPECT_EQ(report["script"].toString(), "s.txt");
    EXPECT_EQ(report["protocol"].toString(), "HYATT");
    EXPECT_EQ(compact(report["commands"][1]), refusedRow);
    EXPECT_EQ(compact(report["findings"][1]), refusedFinding);
    EXPECT_EQ(report["commands"][0]["sends"].toArray(), QJsonArray({"CHK1   101"}));
}

} // namespace
