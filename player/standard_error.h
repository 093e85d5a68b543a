#pragma once

#include <QString>

namespace larkspur {

// One line on standard error: "larkspur-run: " + `text`, at once.
void printNotice(const QString& text);

} // namespace larkspur
