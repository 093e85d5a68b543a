// The --check report, written as the check walks: the same rows and findings as the check kept
// whole, in text and in JSON.
#include "player/check_report.h"
#include "script/script_check.h"
#include "script/script_reader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace larkspur;

namespace {

const QByteArray scripts[] = {
    "; hotel\r\nCHK1   101\r\nWKP0799  101\r\nNAM1 Smith                101\r\nCHK1   101\r\n"
    ";\r\n",
    "CHK1   101\r\n;\r\n",
    "\xEF\xBB\xBF"
    "CHK1   101\r\n",
    "VMAILHIS\r\n\x02"
    "2 4001 \x03"
    "4~\r\n;\r\n",
    "",
};

TEST(CheckReport, TextHoldsTheKeptCheckRowByRow) {
    for (const QByteArray& file : scripts) {
        SCOPED_TRACE(file.toStdString());
        const ScriptText script = readScript(file);
        QByteArray text;
        const CheckVerdict verdict = writeCheckReportText(
            [&](const QByteArray& piece) { text += piece; }, "s.txt", script, {});
        const ScriptCheck kept = checkScript(script);
        EXPECT_EQ(verdict, kept.verdict());
        QStringList lines = QString::fromLatin1(text).split(u'\n');
        ASSERT_EQ(lines.takeLast(), QString());
        EXPECT_EQ(lines.takeFirst(),
                  QStringLiteral("s.txt: %1 script, protocol %2, commands reached: %3")
                      .arg(pmsModeName(kept.pmsMode), protocolName(kept.protocolType))
                      .arg(kept.rows.size()));
        EXPECT_EQ(lines.takeLast(), kept.verdictText());
        ASSERT_EQ(lines.size(), kept.rows.size() + kept.findings.size());
        for (qsizetype i = 0; i < kept.rows.size(); ++i)
            EXPECT_TRUE(lines[i].endsWith(QStringLiteral("-> ") + kept.rows[i].drives))
                << lines[i].toStdString();
        for (qsizetype i = 0; i < kept.findings.size(); ++i) {
            const CheckFinding& f = kept.findings[i];
            EXPECT_EQ(lines[kept.rows.size() + i],
                      QStringLiteral("%1: %2: %3").arg(f.lines(), f.levelName(), f.text));
        }
    }
}

TEST(CheckReport, JsonIsOneObjectWithTheKeptCheck) {
    for (const QByteArray& file : scripts) {
        SCOPED_TRACE(file.toStdString());
        const ScriptText script = readScript(file);
        QByteArray json;
        writeCheckReportJson([&](const QByteArray& piece) { json += piece; }, "s.txt", script, {});
        QJsonParseError error{};
        const QJsonObject report = QJsonDocument::fromJson(json, &error).object();
        ASSERT_EQ(error.error, QJsonParseError::NoError) << json.toStdString();
        const ScriptCheck kept = checkScript(script);
        EXPECT_EQ(report["script"].toString(), "s.txt");
        EXPECT_EQ(report["verdict"].toString(), kept.verdictName());
        const QJsonArray commands = report["commands"].toArray();
        ASSERT_EQ(commands.size(), kept.rows.size());
        for (qsizetype i = 0; i < kept.rows.size(); ++i) {
            const QJsonObject row = commands[i].toObject();
            EXPECT_EQ(row["line"].toInt(), kept.rows[i].line);
            EXPECT_EQ(row["drives"].toString(), kept.rows[i].drives);
            EXPECT_EQ(row["sends"].toVariant().toStringList(), kept.rows[i].sends);
            EXPECT_EQ(row["refusals"].toVariant().toStringList(), kept.rows[i].refusals);
            EXPECT_EQ(row["warned"].toBool(), kept.rows[i].warned);
        }
        const QJsonArray findings = report["findings"].toArray();
        ASSERT_EQ(findings.size(), kept.findings.size());
        for (qsizetype i = 0; i < kept.findings.size(); ++i) {
            EXPECT_EQ(findings[i]["kind"].toString(), kept.findings[i].kind);
            EXPECT_EQ(findings[i]["text"].toString(), kept.findings[i].text);
            EXPECT_EQ(findings[i]["firstColumn"].toInt(), kept.findings[i].firstColumn);
        }
        // As QJsonDocument would write it, so tools see no change but the new members.
        EXPECT_EQ(QJsonDocument(report).toJson(QJsonDocument::Indented), json);
    }
}

} // namespace
