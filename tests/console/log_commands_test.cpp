#include "common/fake_session.h"
#include "console/line_view.h"
#include "console/log_commands.h"
#include "console/log_view.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class LogCommands : public ::testing::Test, protected FakeSession {
protected:
    QTemporaryDir dir;
    QString path = dir.filePath("pms.log");
    LogViewList& list = session.log().viewerList();
    QStringList entries() const {
        QStringList l;
        for (qsizetype i = 0; i < list.size(); ++i)
            l.append(list.entry(i).toString());
        return l;
    }
};

TEST_F(LogCommands, SaveStartAfreshAndOpenTwice) {
    session.log().logLine("Connected...");
    session.log().logLine("Received--> ACK");
    op.filesToSave = {path};
    cmd_save_log(session);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "Connected...\r\nReceived--> ACK\r\n");
    EXPECT_EQ(op.filters, QStringList{"PMS Log File (*.log)"});
    session.errors().recordError("an old failure", false);
    cmd_new_error_file(session);
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(session.errors().errorReport().isEmpty());
    EXPECT_EQ(session.log().logText(), "Connected...\r\nReceived--> ACK\r\n")
        << "the traffic itself is not touched";
    op.filesToOpen = {path, path};
    EXPECT_TRUE(cmd_open_logfile(session));
    EXPECT_TRUE(cmd_open_logfile(session));
    EXPECT_EQ(entries(),
              QStringList({"Connected...", "Received--> ACK", "Connected...", "Received--> ACK"}));
}

TEST_F(LogCommands, CancelledRefusedOrBusyTheCommandsChangeNothing) {
    session.log().logLine("kept");
    EXPECT_FALSE(cmd_open_logfile(session)) << "no viewer after a cancelled open";
    EXPECT_EQ(cmd_save_log(session), "");
    EXPECT_EQ(entries(), QStringList{"kept"});
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
    const QString nowhere = dir.filePath("no/such/folder/pms.log");
    op.filesToSave = {nowhere};
    const QString said = cmd_save_log(session);
    EXPECT_TRUE(said.startsWith("The log file " + nowhere + " could not be written: "))
        << said.toStdString();
    EXPECT_TRUE(op.notices.isEmpty()) << "no box, as for every other log command";
    EXPECT_EQ(session.log().logText(), "kept\r\n") << "and nothing logged";

    // While an acknowledgement is awaited no dialog is even shown; starting afresh still works.
    op.filters.clear();
    const Link::WaitGuard busy(session.link());
    op.filesToOpen = {path};
    op.filesToSave = {path};
    EXPECT_FALSE(cmd_open_logfile(session));
    cmd_save_log(session);
    EXPECT_TRUE(op.filters.isEmpty());
    EXPECT_FALSE(QFile::exists(path));
    cmd_new_error_file(session);
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(LogCommands, ViewerShowsTheListAndOnlyHidesWhenClosed) {
    LogView viewer(list);
    auto* view = viewer.findChild<LineView*>("lst_log");
    ASSERT_TRUE(view);
    session.log().logLine("first");
    viewer.show();
    EXPECT_EQ(view->model()->rowCount(), 1);
    session.log().logLine("second");
    viewer.entriesAdded();
    view->syncNow();
    EXPECT_EQ(view->model()->rowCount(), 2);
    viewer.close();
    EXPECT_TRUE(viewer.isHidden());
    cmd_new_error_file(session);
    viewer.entriesCleared();
    session.log().logLine("third");
    viewer.show();
    EXPECT_EQ(view->model()->rowCount(), 1);
    EXPECT_EQ(view->model()->index(0, 0).data().toString(), "third");
}

} // namespace
