#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace larkspur::test {

// Runs the built larkspur-run with `arguments` in `home`, its outputs thrown away, and gives
// the peak resident memory it reached in kilobytes; -1 when it did not end with
// `expectedStatus`. A process of its own, so nothing of the test's counts in.
long peakKilobytesOfRun(const QList<QByteArray>& arguments, const QString& home,
                        int expectedStatus);

} // namespace larkspur::test
