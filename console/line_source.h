#pragma once

#include <QString>

namespace larkspur {

// Lines a line view shows, kept by their owner in compact storage; the view asks for the few it
// paints.
class LineSource {
public:
    virtual ~LineSource() = default;
    virtual qsizetype lineCount() const = 0;
    virtual QString line(qsizetype index) const = 0;
};

} // namespace larkspur
