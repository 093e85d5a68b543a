#pragma once

#include "script/script_check.h"
#include "script/script_reader.h"

namespace larkspur {

// What the reader tells of the file beside its text, as findings in the order of their lines:
// the encoding, the lines left out, the lines holding bytes an editor may hide.
class ReaderNotes {
public:
    explicit ReaderNotes(const ScriptText& script) : m_script(script) {}

    // The next note about a line up to `line`, if there is one.
    bool next(int line, CheckFinding& note);

private:
    bool encoding(CheckFinding& note) const;
    static CheckFinding leftOutNote(const ScriptText::LeftOut& out, const QByteArray& text);
    static CheckFinding oddityNote(const ScriptText::Oddity& odd);

    const ScriptText& m_script;
    bool m_encodingTold = false;
    qsizetype m_out = 0;
    qsizetype m_odd = 0;
};

} // namespace larkspur
