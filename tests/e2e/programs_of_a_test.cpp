// Stands for a test that is killed while its programs run: starts the simulator and a run
// against it that waits without end, prints their process ids on one line, and waits to be
// killed.
#include "common/pbxsim_process.h"
#include "common/test_process.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

using namespace larkspur::test;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    PbxSimProcess sim;
    QTemporaryDir home;
    QFile script(home.filePath(QStringLiteral("wait.txt")));
    if (!sim.start() || !script.open(QIODevice::WriteOnly) ||
        script.write("WAIT STS1   101 0\r\n;\r\n") < 0)
        return 1;
    script.close();
    TestProcess run;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home.path());
    run.setProcessEnvironment(env);
    run.setStandardOutputFile(QProcess::nullDevice());
    run.start(QStringLiteral(LARKSPUR_RUN_PATH),
              {QStringLiteral("--no-settings"), QStringLiteral("--tcp"),
               QStringLiteral("127.0.0.1:%1").arg(sim.port()), script.fileName()});
    if (!run.waitForStarted())
        return 1;
    std::printf("%lld %lld\n", sim.pid(), run.processId());
    std::fflush(stdout);
    return app.exec();
}
