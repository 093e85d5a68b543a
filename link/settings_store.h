#pragma once

#include <QString>

class QSettings;

namespace larkspur {

class Link;

// The link and mode settings kept between runs: organisation and application "Larkspur",
// group "Startup", every value a text. Absent keys give the first-run defaults. Beside them,
// "Link/FrameGapMs" sets the frame gap (see LinkSettings); no dialog edits it and it is never
// written back. Returns what was wrong with a value that was not taken, or an empty text.
QString loadLinkSettings(QSettings& store, Link& link);
// Returns why the settings could not be written, or an empty text.
QString saveLinkSettings(QSettings& store, const Link& link);

} // namespace larkspur
