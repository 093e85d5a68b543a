#pragma once

class QSettings;

namespace larkspur {

class Link;

// The link and mode settings kept between runs: organisation and application "Larkspur",
// group "Startup", every value a text. Absent keys give the first-run defaults.
void loadLinkSettings(QSettings& store, Link& link);
void saveLinkSettings(QSettings& store, const Link& link);

} // namespace larkspur
