#pragma once

#include <QString>

namespace larkspur {

// A text from the script as the check's findings quote it: between quotation marks, in the
// readable notation so no control byte reaches a terminal.
QString quoted(const QString& text);
// The same for a text that may be as long as a line: past 80 characters, the start and the
// length.
QString quotedShort(const QString& text);

} // namespace larkspur
