#pragma once

#include "common/test_process.h"

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <gtest/gtest.h>

namespace larkspur::test {

inline QString readPage(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// A report page must parse cleanly as HTML and show every failure it lists, in words and in
// red, at the place in the conversation its link points to. Gives the failures' texts.
inline QStringList checkReportPage(const QString& path) {
    TestProcess xmllint;
    xmllint.setProcessChannelMode(QProcess::MergedChannels);
    xmllint.start(QStringLiteral("xmllint"),
                  {QStringLiteral("--html"), QStringLiteral("--noout"), path});
    EXPECT_TRUE(xmllint.waitForFinished(30'000));
    EXPECT_EQ(xmllint.exitCode(), 0);
    EXPECT_EQ(xmllint.readAll().toStdString(), "");

    const QString page = readPage(path);
    QStringList failures;
    const QRegularExpression listed(
        QStringLiteral("<li><a href=\"#(s\\d+)\">[^<]*</a> <span class=\"bad\">([^<]*)</span>"));
    for (auto it = listed.globalMatch(page); it.hasNext();) {
        const auto m = it.next();
        failures << m.captured(2);
        const qsizetype row = page.indexOf(QStringLiteral("<tr id=\"%1\"").arg(m.captured(1)));
        EXPECT_GE(row, 0) << m.captured(1).toStdString();
        const qsizetype next = page.indexOf(QStringLiteral("<tr id="), row + 1);
        const QString drawn = page.mid(row, next - row);
        EXPECT_TRUE(drawn.contains(QStringLiteral("class=\"fail\"")) &&
                    drawn.contains(QStringLiteral("<strong class=\"bad\">")))
            << drawn.toStdString();
    }
    return failures;
}

// "tests" and "failures" of a JUnit report or "commands played, failed" of a page.
inline std::pair<int, int> counted(const QString& text, const QString& pattern) {
    const auto m = QRegularExpression(pattern).match(text);
    return {m.captured(1).toInt(), m.captured(2).toInt()};
}

} // namespace larkspur::test
