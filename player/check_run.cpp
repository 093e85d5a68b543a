#include "player/check_run.h"

#include "player/check_report.h"
#include "player/headless_player.h"
#include "player/player_options.h"
#include "script/script_check.h"
#include "script/script_file.h"
#include "script/script_reader.h"

#include <cstdio>

namespace larkspur {

int checkHeadless(const PlayerOptions& options) {
    const ScriptFile file = readScriptFile(options.script);
    if (file.status != ScriptFile::Status::Read) {
        std::fprintf(stderr, "larkspur-run: cannot read %s: %s\n", qPrintable(options.script),
                     qPrintable(file.error));
        return file.status == ScriptFile::Status::Interrupted ? exitcode::interrupted
                                                              : exitcode::badScript;
    }
    const ScriptCheck check = checkScript(readScript(file.bytes));
    const QByteArray report = options.json ? checkReportJson(options.script, check)
                                           : checkReportText(options.script, check).toLatin1();
    std::fwrite(report.constData(), 1, size_t(report.size()), stdout);
    std::fflush(stdout);
    switch (check.verdict()) {
    case ScriptCheck::Verdict::Clean:
        return exitcode::ok;
    case ScriptCheck::Verdict::Warnings:
        return exitcode::checkWarnings;
    case ScriptCheck::Verdict::Stops:
        break;
    }
    return exitcode::badScript;
}

} // namespace larkspur
