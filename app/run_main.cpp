// larkspur-run: plays a script against the PBX without a window, for CI and lab racks.
#include "core/qt_event_pump.h"
#include "core/termination_signals.h"
#include "player/check_run.h"
#include "player/headless_player.h"
#include "player/player_options.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Larkspur"));
    QCoreApplication::setApplicationName(QStringLiteral("Larkspur"));
    // A closed standard output is an error to handle, not the end of the run.
    larkspur::ignoreBrokenPipes();

    QString error;
    const auto options = larkspur::parsePlayerOptions(app.arguments().mid(1), error);
    if (!options) {
        std::fprintf(stderr, "larkspur-run: %s\n%s", qPrintable(error),
                     qPrintable(larkspur::playerUsage()));
        return larkspur::exitcode::usage;
    }
    if (options->help) {
        std::fputs(qPrintable(larkspur::playerHelp()), stdout);
        return 0;
    }
    if (options->check)
        return larkspur::checkHeadless(*options);
    return larkspur::runHeadless(*options);
}
