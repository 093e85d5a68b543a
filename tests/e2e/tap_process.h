#pragma once

#include "common/test_process.h"

#include <QByteArray>
#include <QStringList>

namespace larkspur::test {

// The built larkspur-tap, run for a test:
//
//     TapProcess tap({"--listen", "127.0.0.1:0", "--pbx", "127.0.0.1:15374"});
//     ASSERT_TRUE(tap.start()) << tap.diagnostics();
//     socket.connectToHost("127.0.0.1", tap.port());
class TapProcess {
public:
    explicit TapProcess(const QStringList& arguments);
    TapProcess(const TapProcess&) = delete;
    TapProcess& operator=(const TapProcess&) = delete;

    static QString program();

    // Standard output goes to `path` instead of to the test (call before start()); the trace is
    // then read from the --trace file.
    void sendOutputTo(const QString& path);
    // Starts it and waits for its first trace line (where it listens, or the session its ports
    // began). False if it failed or took longer.
    bool start(int timeoutMs = 10000);

    // The port it listens on, from its first line.
    quint16 port() const;
    qint64 pid() const { return m_process.processId(); }

    // Its trace lines so far, each without its time stamp.
    QStringList lines() const;
    // Waits until a line holds `text`.
    bool waitForLine(const QString& text, int timeoutMs = 10000);

    // Sends `signal` and waits for it to end: its exit status, or -1 when it did not end in
    // time (it is killed then) or crashed.
    int stop(int signal, int timeoutMs = 10000);
    // Waits for it to end on its own: its exit status, or -1.
    int waitForExit(int timeoutMs = 30000);

    QString standardError() const { return QString::fromUtf8(m_stderr); }
    // Its arguments, output and standard error, to explain a failed assertion.
    std::string diagnostics() const;

private:
    // Takes in what it wrote last, and gives `status`.
    int collected(int status);

    QStringList m_arguments;
    QString m_traceFile; // where the trace is read when standard output goes elsewhere
    TestProcess m_process;
    QByteArray m_stdout;
    QByteArray m_stderr;
};

// The bytes one side sent, from the rows of a trace: larkspur-run's (TX and RX after the time)
// or the simulator's (without the time).
QByteArray bytesOf(const QStringList& rows, const QString& direction);

} // namespace larkspur::test
