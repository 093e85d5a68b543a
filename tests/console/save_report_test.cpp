// File > Save Report...: the page of the last script run the window played.
#include "console/console_fixture.h"

#include <QAbstractButton>
#include <QAction>
#include <QFile>

using namespace larkspur::test;

namespace {

using SaveReport = ConsoleFixture;

QString contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

TEST_F(SaveReport, WritesThePageOfTheLastRunOrSaysWhyNot) {
    pbxAcknowledges();
    find<QAbstractButton>("cmd_connect")->click();
    const QString script = dir.filePath("played.txt");
    QFile f(script);
    f.open(QIODevice::WriteOnly);
    f.write("CHK1   101\r\nWAIT STS2   101 1\r\n;\r\n");
    f.close();
    op.filesToOpen = {script};
    find<QAbstractButton>("Xtest")->click();

    const QString page = dir.filePath("report.html");
    op.filesToSave = {page, dir.filePath("none/report.html")};
    find<QAction>("mnuSaveReport")->trigger();
    const QString written = contents(page);
    EXPECT_TRUE(written.contains("<h1>larkspur: played.txt</h1>")) << written.toStdString();
    EXPECT_TRUE(written.contains("2 commands played, 1 failed;"));
    EXPECT_TRUE(written.contains("failed wait: sts2 did not come within 10"));

    find<QAction>("mnuSaveReport")->trigger();
    ASSERT_FALSE(op.notices.isEmpty());
    EXPECT_TRUE(op.notices.last().startsWith("Cannot write the report " +
                                             dir.filePath("none/report.html") + ": "))
        << op.notices.last().toStdString();
}

} // namespace
