#pragma once

#include <QMap>
#include <QString>

namespace larkspur {

// How many answers took each number of milliseconds, drawn as a histogram: an <img> holding
// its SVG picture in the page itself, since HTML parsers that predate inline SVG elements
// reject them. `what` names the message type for the picture's text.
QString answerHistogram(const QMap<qint64, qint64>& answerMs, const QString& what);

} // namespace larkspur
