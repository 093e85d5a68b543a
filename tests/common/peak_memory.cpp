#include "common/peak_memory.h"

#include <QFile>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
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
    // As a TestProcess would be, so that it goes down with the test; wait4 gives its peak.
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid == 0) {
        // Only calls that are safe between fork and exec in a program with threads.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = ::open("/dev/null", O_WRONLY);
        if (::getppid() != parent || null < 0)
            ::_exit(127);
        ::dup2(null, 1);
        ::dup2(null, 2);
        ::execve(program.constData(), argv.data(), env.data());
        ::_exit(127);
    }
    if (pid < 0)
        return -1;
    int status = 0;
    rusage usage{};
    if (::wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) ||
        WEXITSTATUS(status) != expectedStatus)
        return -1;
    return usage.ru_maxrss;
}

} // namespace larkspur::test
