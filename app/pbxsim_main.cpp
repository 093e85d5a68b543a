// larkspur-pbxsim: the PBX side of the link, for practice, demos and our own tests.

#include "core/termination_signals.h"
#include "sim/pbx_simulator.h"
#include "sim/sim_options.h"
#include "sim/stdin_lines.h"
#include "sim/tracer.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <unistd.h>

using namespace larkspur::sim;

namespace {

constexpr int exitUsage = 64;

void printError(const QString& text) {
    std::fputs(qPrintable(QStringLiteral("larkspur-pbxsim: ") + text + u'\n'), stderr);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);

    const ParsedArguments parsed = parseSimArguments(app.arguments().mid(1));
    if (!parsed.options) {
        printError(parsed.error);
        std::fputs(qPrintable(simUsage()), stderr);
        return exitUsage;
    }
    const SimOptions& options = *parsed.options;
    if (options.help) {
        std::fputs(qPrintable(simHelp()), stdout);
        return 0;
    }

    // Unbuffered: whoever reads the trace through a pipe sees each line as it happens.
    Tracer tracer;
    QFile out;
    out.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    tracer.addSink(&out);
    QFile traceFile(options.traceFile);
    if (!options.traceFile.isEmpty()) {
        if (!traceFile.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
            printError(QStringLiteral("cannot write %1: %2")
                           .arg(options.traceFile, traceFile.errorString()));
            return 1;
        }
        tracer.addSink(&traceFile);
    }

    QString error;
    // Quit through the event loop so destructors run (the pty's symlink is removed).
    // Whoever read the trace may go (| head); the PBX goes on answering its console.
    larkspur::ignoreBrokenPipes();
    if (!larkspur::watchTerminationSignals([](larkspur::Termination) { QCoreApplication::quit(); },
                                           &error)) {
        printError(error);
        return 1;
    }
    PbxSimulator simulator(options, tracer);
    if (!simulator.start(&error)) {
        printError(error);
        return 1;
    }

    StdinLines input(STDIN_FILENO);
    QObject::connect(&input, &StdinLines::line, &simulator, [&simulator](const QString& line) {
        QString why;
        if (!line.isEmpty() && !simulator.sendLine(line, &why))
            printError(why);
    });
    return app.exec();
}
