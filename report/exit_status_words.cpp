#include "report/exit_status_words.h"

#include "core/exit_status.h"

namespace larkspur {

QString exitStatusWords(int status) {
    const char* words = "unknown";
    switch (status) {
    case exitcode::ok:
        words = "clean";
        break;
    case exitcode::failed:
        words = "a command failed";
        break;
    case exitcode::noLink:
        words = "no link";
        break;
    case exitcode::badScript:
        words = "bad script";
        break;
    case exitcode::linkLost:
        words = "link lost";
        break;
    case exitcode::reportsUnwritten:
        words = "a report or the traffic log could not be written whole";
        break;
    case exitcode::usage:
        words = "bad arguments";
        break;
    case exitcode::hungUp:
        words = "hung up";
        break;
    case exitcode::interrupted:
        words = "interrupted";
        break;
    }
    return QStringLiteral("%1: %2").arg(status).arg(QLatin1String(words));
}

} // namespace larkspur
