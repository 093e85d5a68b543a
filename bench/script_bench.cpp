// The script engine: reading a long script, and replaying commands against the simulated PBX in
// virtual time (so only the engine's own cost is measured).
#include "bench_common.h"
#include "quiet_operator.h"

#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "doubles/simulated_pbx.h"
#include "script/script_engine.h"
#include "script/script_reader.h"
#include "transactions/session.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

QByteArray scriptOf(int commands) {
    static const char* const lines[] = {
        "CHK1   101",           "NAM1 Smith                  101",
        "MW 1   101",           "LMT1   101   500",
        "WKP0730  101",         "DPT1 SALES       101",
        "LOC1 LOBBY       101", "STE0   101   102   103",
        "CHK0   101",           "RST2   101",
    };
    QByteArray text;
    for (int i = 0; i < commands; ++i)
        text += QByteArray(lines[i % 10]) + "\r\n";
    return text + ";\r\n";
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);

    const QByteArray big = scriptOf(10'000);
    std::vector<double> reads;
    for (int i = 0; i < 7; ++i) {
        const double t0 = bench::now();
        const larkspur::ScriptText s = larkspur::readScript(big);
        reads.push_back(bench::now() - t0);
        if (s.text.size() < big.size() / 2)
            return 1;
    }
    bench::row("script: read and parse 10,000 lines",
               bench::fmt("%.2f ms", bench::median(reads) * 1000), "-", true);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.txt"));
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(scriptOf(1000));
    f.close();
    std::vector<double> replays;
    double virtualSeconds = 0;
    for (int i = 0; i < 3; ++i) {
        larkspur::VirtualEventPump pump;
        bench::QuietOperator op;
        larkspur::FakeTransport tcp(pump, QStringLiteral("tcp"));
        larkspur::FakeTransport serial(pump, QStringLiteral("serial"));
        larkspur::Session session(pump, op, tcp, serial);
        larkspur::SimulatedPbx pbx(pump, tcp);
        larkspur::ScriptEngine engine(session);
        tcp.connectToHost(QStringLiteral("127.0.0.1"), 1);
        pump.processEvents();
        const double t0 = bench::now();
        engine.runScriptFile(path);
        replays.push_back(bench::now() - t0);
        virtualSeconds = double(pump.elapsedMs()) / 1000.0;
        if (session.errors().errorCount() != 0)
            return 1;
    }
    bench::row(
        "script: replay 1,000 commands, simulated PBX, virtual time",
        bench::fmt("%.1f ms real (%.0f s virtual)", bench::median(replays) * 1000, virtualSeconds),
        "-", true);
    return 0;
}
