#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

// Text for an HTML page: <, >, & and quotes escaped, and any character a page cannot hold
// (control characters) in the readable notation, so nothing the PBX sends can break the page.
QString htmlText(const QString& text);
// Wire bytes in the readable notation ("<STX>CHK1   101<ETX>"), escaped.
QString htmlBytes(const QByteArray& bytes);

} // namespace larkspur
