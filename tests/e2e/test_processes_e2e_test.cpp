// What a test starts goes down with it, even when the test itself is killed.
#include "common/pbxsim_process.h"
#include "common/test_process.h"

#include <QFile>
#include <QTimer>
#include <gtest/gtest.h>

#include <csignal>

using namespace larkspur::test;

namespace {

// Whether `pid` is a process that still runs: one that has ended but is not yet reaped by
// whoever inherited it does not.
bool running(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = stat.readAll();
    const qsizetype state = line.lastIndexOf(')') + 2;
    return state < line.size() && line.at(state) != 'Z' && line.at(state) != 'X';
}

TEST(ProgramsOfATest, EndWhenTheTestIsKilled) {
    TestProcess test;
    test.start(QStringLiteral(LARKSPUR_PROGRAMS_OF_A_TEST), {});
    ASSERT_TRUE(waitUntil([&] { return test.canReadLine(); }, 30'000));
    const QList<QByteArray> pids = test.readLine().trimmed().split(' ');
    ASSERT_EQ(pids.size(), 2);
    for (const QByteArray& pid : pids)
        ASSERT_TRUE(running(pid.toLongLong())) << pid.toStdString();

    ::kill(pid_t(test.processId()), SIGKILL);
    ASSERT_TRUE(test.waitForFinished(10'000));
    // The end of a process that is not the test's own child comes with no event: look often.
    QTimer look;
    look.start(20);
    for (const QByteArray& pid : pids) {
        const qint64 program = pid.toLongLong();
        EXPECT_TRUE(waitUntil([&] { return !running(program); }, 10'000)) << program;
        if (running(program))
            ::kill(pid_t(program), SIGKILL);
    }
}

} // namespace
