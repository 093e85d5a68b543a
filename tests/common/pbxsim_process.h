#pragma once

#include "common/test_process.h"

#include <QByteArray>
#include <QStringList>

namespace larkspur::test {

// Splits the simulator's standard output into its trace lines ("RX <...>" and "TX <...>", the
// time stamp taken off) and its status lines ("# ...", kept whole). Anything else is a stray
// line: the output format is broken.
class PbxSimOutput {
public:
    void feed(const QByteArray& bytes);

    const QStringList& traceLines() const { return m_trace; }
    const QStringList& statusLines() const { return m_status; }
    const QStringList& strayLines() const { return m_stray; }

private:
    QByteArray m_partial;
    QStringList m_trace;
    QStringList m_status;
    QStringList m_stray;
};

// The built larkspur-pbxsim, run for a test on an ephemeral loopback port:
//
//     PbxSimProcess sim({"--on-frame", "nak"});
//     ASSERT_TRUE(sim.start()) << sim.diagnostics();
//     socket.connectToHost("127.0.0.1", sim.port());
//
// With "--pty" among the arguments, start() also waits for the pseudo-terminal's path.
class PbxSimProcess {
public:
    explicit PbxSimProcess(const QStringList& extraArguments = {});
    PbxSimProcess(const PbxSimProcess&) = delete;
    PbxSimProcess& operator=(const PbxSimProcess&) = delete;

    // Where the build put the program.
    static QString program();

    // Starts it and waits until it listens (and has its pty). False if it failed or took longer
    // than `timeoutMs`.
    bool start(int timeoutMs = 10000);

    quint16 port() const { return m_port; }
    qint64 pid() const { return m_process.processId(); }
    QString ptyPath() const { return m_ptyPath; }

    const QStringList& traceLines() const { return m_output.traceLines(); }
    const QStringList& statusLines() const { return m_output.statusLines(); }
    QString standardError() const { return QString::fromUtf8(m_stderr); }

    // Waits until at least `count` trace lines have come.
    bool waitForTraceLines(qsizetype count, int timeoutMs = 5000);

    // Types `line` on the simulator's standard input.
    void writeLine(const QString& line);

    // Ends it with SIGTERM as an operator would and waits. Its exit code, or -1 when it crashed
    // or had to be killed.
    int stop(int timeoutMs = 5000);

    // Its arguments, status lines and standard error, to explain a failed assertion.
    QString diagnostics() const;

private:
    QStringList m_arguments;
    TestProcess m_process;
    PbxSimOutput m_output;
    QByteArray m_stderr;
    quint16 m_port = 0;
    QString m_ptyPath;
};

} // namespace larkspur::test
