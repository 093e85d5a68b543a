#pragma once

#include <QString>

#include <cstdio>

namespace larkspur {

// One line on standard error: "larkspur-run: " + `text`, at once.
void printNotice(const QString& text);

// While a progress line stands on the terminal, every line written to that terminal first
// clears it.
void noticesClearTheLine(bool clear);
// What a line written to `stream` starts with: the clearing of the progress line when one
// stands where `stream` writes; else nothing.
const char* progressLineClearing(std::FILE* stream);

} // namespace larkspur
