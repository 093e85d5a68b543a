#pragma once

#include <QString>

namespace larkspur {

// The exit status of a headless program with what it means: "1: a command failed".
QString exitStatusWords(int status);

} // namespace larkspur
