#include "common/peak_memory.h"

#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

namespace larkspur::test {

long peakKilobytesOfRun(const QList<QByteArray>& arguments, const QString& home,
                        int expectedStatus) {
    QByteArray program = LARKSPUR_RUN_PATH;
    QList<QByteArray> args = arguments;
    std::vector<char*> argv = {program.data()};
    for (QByteArray& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    QByteArray homeVariable = "HOME=" + QFile::encodeName(home);
    QByteArray platform = "QT_QPA_PLATFORM=offscreen";
    std::vector<char*> env = {homeVariable.data(), platform.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int spawned =
        posix_spawn(&pid, program.constData(), &actions, nullptr, argv.data(), env.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return -1;
    int status = 0;
    rusage usage{};
    if (::wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) ||
        WEXITSTATUS(status) != expectedStatus)
        return -1;
    return usage.ru_maxrss;
}

} // namespace larkspur::test
