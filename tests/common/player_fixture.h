#pragma once

#include "common/pbxsim_process.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace larkspur::test {

// larkspur-run as a separate process, in a home of its own so an engineer's stored settings
// never leak in, with both of its outputs collected.
class PlayerFixture : public ::testing::Test {
protected:
    QTemporaryDir home;
    QProcess run;
    QByteArray out, err;

    void SetUp() override {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", home.path());
        env.insert("XDG_CONFIG_HOME", home.path());
        run.setProcessEnvironment(env);
        QObject::connect(&run, &QProcess::readyReadStandardOutput,
                         [this] { out += run.readAllStandardOutput(); });
        QObject::connect(&run, &QProcess::readyReadStandardError,
                         [this] { err += run.readAllStandardError(); });
    }
    // Writes `content` to `name` in the home and gives its path.
    QString file(const QString& name, const QByteArray& content) {
        const QString path = home.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path;
    }
    QString script(const QByteArray& content) { return file("script.txt", content); }
    void start(const QStringList& arguments) {
        run.start(QStringLiteral(LARKSPUR_RUN_PATH), arguments);
        ASSERT_TRUE(run.waitForStarted());
    }
    // Runs to the end (bounded) and gives the exit status: -1 when it had to be killed, -2 when
    // it crashed.
    int finish(int timeoutMs = 120'000) {
        waitUntil([this] { return run.state() == QProcess::NotRunning; }, timeoutMs);
        if (run.state() != QProcess::NotRunning) {
            run.kill();
            run.waitForFinished();
            return -1;
        }
        return run.exitStatus() == QProcess::NormalExit ? run.exitCode() : -2;
    }
    QStringList outLines() const {
        return QString::fromLatin1(out).split('\n', Qt::SkipEmptyParts);
    }
    QStringList errLines() const {
        return QString::fromLatin1(err).split('\n', Qt::SkipEmptyParts);
    }
    static QString tcp(const PbxSimProcess& sim) {
        return QStringLiteral("127.0.0.1:%1").arg(sim.port());
    }
};

} // namespace larkspur::test
