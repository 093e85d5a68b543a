#include "report/answer_histogram.h"

#include "report/html_text.h"

#include <QList>

#include <algorithm>

namespace larkspur {

namespace {
constexpr int bins = 20;
constexpr int barWidth = 12;
constexpr int plotHeight = 48;
constexpr int labelHeight = 14;
} // namespace

QString answerHistogram(const QMap<qint64, qint64>& answerMs, const QString& what) {
    if (answerMs.isEmpty())
        return QString();
    const qint64 top = answerMs.lastKey();
    // Each bar holds the same span of milliseconds; the last holds the slowest answer.
    const qint64 span = std::max<qint64>(1, (top + bins) / bins);
    QList<qint64> counts(bins, 0);
    for (auto it = answerMs.cbegin(); it != answerMs.cend(); ++it)
        counts[int(std::min<qint64>(bins - 1, it.key() / span))] += it.value();
    const qint64 most = *std::max_element(counts.cbegin(), counts.cend());

    const int width = bins * barWidth;
    QString svg = QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' width='%1' height='%2' "
                                 "font-family='sans-serif' font-size='10'>")
                      .arg(width)
                      .arg(plotHeight + labelHeight);
    for (int i = 0; i < bins; ++i) {
        if (counts[i] == 0)
            continue;
        const int h = std::max<int>(1, int(counts[i] * plotHeight / most));
        svg += QStringLiteral("<rect x='%1' y='%2' width='%3' height='%4' fill='#3a6ea5'/>")
                   .arg(i * barWidth + 1)
                   .arg(plotHeight - h)
                   .arg(barWidth - 2)
                   .arg(h);
    }
    svg += QStringLiteral("<line x1='0' y1='%1' x2='%2' y2='%1' stroke='#444'/>")
               .arg(plotHeight)
               .arg(width);
    svg += QStringLiteral("<text x='0' y='%1'>0</text><text x='%2' y='%1' "
                          "text-anchor='end'>%3 ms</text></svg>")
               .arg(plotHeight + labelHeight - 2)
               .arg(width)
               .arg(span * bins);
    const QString alt = QStringLiteral("answer times of %1: up to %2 ms, %3 ms a bar, the "
                                       "tallest bar %4 answers")
                            .arg(what)
                            .arg(top)
                            .arg(span)
                            .arg(most);
    return QStringLiteral("<img class=\"histogram\" alt=\"%1\" title=\"%1\" "
                          "src=\"data:image/svg+xml;base64,%2\">")
        .arg(htmlText(alt), QString::fromLatin1(svg.toUtf8().toBase64()));
}

} // namespace larkspur
