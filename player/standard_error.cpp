#include "player/standard_error.h"

#include <cstdio>

namespace larkspur {

void printNotice(const QString& text) {
    std::fprintf(stderr, "larkspur-run: %s\n", qPrintable(text));
    std::fflush(stderr);
}

} // namespace larkspur
