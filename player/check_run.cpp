#include "player/check_run.h"

#include "player/check_report.h"
#include "player/headless_player.h"
#include "player/player_options.h"
#include "player/standard_error.h"
#include "script/script_check.h"
#include "script/script_file.h"
#include "script/script_reader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

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
        printNotice(QStringLiteral("cannot read %1: %2").arg(options.script, file.error));
        return file.status == ScriptFile::Status::Interrupted ? exitcode::interrupted
                                                              : exitcode::badScript;
    }
    const ScriptText script = readText(std::move(file));
    const CheckOptions checkOptions{.errorMode = options.errorMode};
    int writeError = 0; // of the first write that failed
    const ReportOutput out = [&writeError](const QByteArray& bytes) {
        errno = 0;
        if (writeError == 0 &&
            std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) != size_t(bytes.size()))
            writeError = errno ? errno : EIO;
    };
    const CheckVerdict verdict =
        options.json ? writeCheckReportJson(out, options.script, script, checkOptions)
                     : writeCheckReportText(out, options.script, script, checkOptions);
    errno = 0;
    if (writeError == 0 && std::fflush(stdout) != 0)
        writeError = errno ? errno : EIO;
    // A reader that has gone (| head) wanted no more; anything else cut the report short.
    if (writeError != 0 && writeError != EPIPE) {
        printNotice(QStringLiteral("cannot write the check on standard output: %1")
                        .arg(QString::fromLocal8Bit(std::strerror(writeError))));
        return exitcode::reportsUnwritten;
    }
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
