#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace larkspur {

// System-information tools the About box can start, in order of preference.
const QStringList& systemInfoTools();
// The first of `tools` found on the PATH, or an empty text.
QString firstInstalledTool(const QStringList& tools);

// "15.5 GiB" from the "MemTotal:" (or another key's) line of /proc/meminfo; empty when absent.
QString meminfoAmount(const QByteArray& meminfo, const QByteArray& key);

// The system's details for when no tool is installed: system, kernel, processors, memory, Qt.
QString systemDetails();

} // namespace larkspur
