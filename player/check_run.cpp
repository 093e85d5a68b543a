#include "player/check_run.h"

#include "player/check_report.h"
#include "player/headless_player.h"
#include "player/player_options.h"
#include "script/script_check.h"
#include "script/script_file.h"
#include "script/script_reader.h"

#include <cstdio>

namespace larkspur {

namespace {
// The script text, read and then free of the file's bytes, so only one copy is held.
ScriptText readText(ScriptFile file) {
    const QByteArray bytes = std::move(file.bytes);
    return readScript(bytes);
}
} // namespace

int checkHeadless(const PlayerOptions& options) {
    ScriptFile file = readScriptFile(options.script);
    if (file.status != ScriptFile::Status::Read) {
        std::fprintf(stderr, "larkspur-run: cannot read %s: %s\n", qPrintable(options.script),
                     qPrintable(file.error));
        return file.status == ScriptFile::Status::Interrupted ? exitcode::interrupted
                                                              : exitcode::badScript;
    }
    const ScriptText script = readText(std::move(file));
    const CheckOptions checkOptions{.errorMode = options.errorMode};
    const ReportOutput out = [](const QByteArray& bytes) {
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    };
    const CheckVerdict verdict =
        options.json ? writeCheckReportJson(out, options.script, script, checkOptions)
                     : writeCheckReportText(out, options.script, script, checkOptions);
    std::fflush(stdout);
    switch (verdict) {
    case CheckVerdict::Clean:
        return exitcode::ok;
    case CheckVerdict::Warnings:
        return exitcode::checkWarnings;
    case CheckVerdict::Stops:
        break;
    }
    return exitcode::badScript;
}

} // namespace larkspur
