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

int checkHeadless(const PlayerOptions& options) {
    const ScriptFile file = readScriptFile(options.script);
    if (file.status != ScriptFile::Status::Read) {
        printNotice(QStringLiteral("cannot read %1: %2").arg(options.script, file.error));
        return file.status == ScriptFile::Status::Interrupted ? exitcode::interrupted
                                                              : exitcode::badScript;
    }
    const ScriptCheck check = checkScript(readScript(file.bytes));
    const QByteArray report = options.json ? checkReportJson(options.script, check)
                                           : checkReportText(options.script, check).toLatin1();
    errno = 0;
    if (std::fwrite(report.constData(), 1, size_t(report.size()), stdout) !=
            size_t(report.size()) ||
        std::fflush(stdout) != 0) {
        // A reader that has gone (| head) wanted no more; anything else cut the report short.
        if (errno != EPIPE) {
            printNotice(QStringLiteral("cannot write the check on standard output: %1")
                            .arg(QString::fromLocal8Bit(std::strerror(errno ? errno : EIO))));
            return exitcode::reportsUnwritten;
        }
    }
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
