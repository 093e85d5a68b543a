// larkspur-tap: watches a real PMS and PBX talk, relaying every byte between them.
#include "core/qt_event_pump.h"
#include "tap/tap_options.h"
#include "tap/tap_run.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QCoreApplication app(argc, argv);

    QString error;
    const auto options = larkspur::tap::parseTapOptions(app.arguments().mid(1), error);
    if (!options) {
        std::fprintf(stderr, "larkspur-tap: %s\n%s", qPrintable(error),
                     qPrintable(larkspur::tap::tapUsage()));
        return larkspur::exitcode::usage;
    }
    if (options->help) {
        std::fputs(qPrintable(larkspur::tap::tapHelp()), stdout);
        return 0;
    }
    return larkspur::tap::runTap(*options);
}
