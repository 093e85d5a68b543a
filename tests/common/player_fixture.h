#pragma once

#include "common/pbxsim_process.h"
#include "common/test_process.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace larkspur::test {

// larkspur-run as a separate process, in a home of its own so an engineer's stored settings
// never leak in, with both of its outputs collected. Every JUnit report a run writes is checked
// against the schema CI servers validate JUnit files with.
class PlayerFixture : public ::testing::Test {
protected:
    QTemporaryDir home;
    TestProcess run;
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
        startProgram(QStringLiteral(LARKSPUR_RUN_PATH), arguments);
    }
    // Starts it with its clock at `clockStart`.
    void startAt(const QDateTime& clockStart, const QStringList& arguments) {
        QProcessEnvironment env = run.processEnvironment();
        env.insert(QStringLiteral("LARKSPUR_CLOCK_START"), clockStart.toString(Qt::ISODate));
        run.setProcessEnvironment(env);
        start(arguments);
    }
    // Runs to the end (bounded) and gives the exit status: -1 when it crashed or had to be
    // killed.
    int finish(int timeoutMs = 120'000) {
        const int status = run.waitForExit(timeoutMs);
        if (QFileInfo(m_junit).isFile()) {
            EXPECT_EQ(schemaProblems(m_junit), "") << m_junit.toStdString();
        }
        return status;
    }
    // What xmllint finds wrong with the JUnit report at `path`; empty when it validates.
    static QString schemaProblems(const QString& path) {
        TestProcess xmllint;
        xmllint.start(QStringLiteral("xmllint"),
                      {QStringLiteral("--noout"), QStringLiteral("--schema"),
                       QStringLiteral(LARKSPUR_SOURCE_DIR "/tests/data/junit-10.xsd"), path});
        if (!xmllint.waitForFinished(30'000))
            return QStringLiteral("xmllint did not run: ") + xmllint.errorString();
        return xmllint.exitCode() == 0 ? QString()
                                       : QString::fromLocal8Bit(xmllint.readAllStandardError());
    }
    QStringList outLines() const {
        return QString::fromLatin1(out).split('\n', Qt::SkipEmptyParts);
    }
    QStringList errLines() const {
        return QString::fromLatin1(err).split('\n', Qt::SkipEmptyParts);
    }
    static QString example(const QString& name) {
        return QStringLiteral(LARKSPUR_SOURCE_DIR "/examples/") + name;
    }
    // The simulator options an example names in its "; simulator:" comment.
    static QStringList simulatorArgumentsOf(const QString& examplePath) {
        QFile f(examplePath);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        const QString marker = QStringLiteral("; simulator: larkspur-pbxsim");
        for (const QString& line : QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n")))
            if (line.startsWith(marker))
                return QProcess::splitCommand(line.mid(marker.size()));
        return {};
    }
    static QString tcp(const PbxSimProcess& sim) {
        return QStringLiteral("127.0.0.1:%1").arg(sim.port());
    }

    // Starts it with its standard output piped into `reader`, a command such as "head -3",
    // whose output is collected instead; the exit status is its own.
    void startPipedInto(const QString& reader, const QStringList& arguments) {
        QStringList command = QProcess::splitCommand(reader);
        run.setStandardOutputProcess(&m_reader);
        QObject::connect(&m_reader, &QProcess::readyReadStandardOutput,
                         [this] { out += m_reader.readAllStandardOutput(); });
        start(arguments);
        m_reader.start(command.takeFirst(), command);
    }

private:
    void startProgram(const QString& program, const QStringList& arguments) {
        const qsizetype junit = arguments.indexOf(QStringLiteral("--junit"));
        m_junit = junit >= 0 ? arguments.value(junit + 1) : QString();
        run.start(program, arguments);
        ASSERT_TRUE(run.waitForStarted());
    }

    QString m_junit;
    TestProcess m_reader;
};

} // namespace larkspur::test
