#include "player/standard_error.h"

#include <unistd.h>

namespace larkspur {

namespace {
bool lineToClear = false;
} // namespace

void printNotice(const QString& text) {
    std::fprintf(stderr, "%slarkspur-run: %s\n", progressLineClearing(stderr), qPrintable(text));
    std::fflush(stderr);
}

void noticesClearTheLine(bool clear) {
    lineToClear = clear;
}

const char* progressLineClearing(std::FILE* stream) {
    // The line stands on standard error, even a file when asked for; standard output shares
    // its terminal when it is one.
    return lineToClear && (stream == stderr || ::isatty(::fileno(stream)) == 1) ? "\r\x1b[K" : "";
}

} // namespace larkspur
