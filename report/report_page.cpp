#include "report/report_page.h"

#include "core/output_file.h"
#include "records/run_statistics.h"
#include "report/answer_histogram.h"
#include "report/html_text.h"
#include "report/run_record.h"
#include "report/sequence_drawing.h"

#include <QIODevice>

namespace larkspur {

namespace {
const char* const style = R"(
body{font:14px/1.4 sans-serif;margin:1.5em;color:#111}
h1{font-size:1.5em;margin:0 0 .5em}
h2{font-size:1.2em;margin:1.5em 0 .4em;border-bottom:1px solid #bbb}
table{border-collapse:collapse}
table.facts th{text-align:left;padding:1px 1em 1px 0;font-weight:normal;color:#555}
p.counts{font-size:1.1em}
.bad{color:#b00000;font-weight:bold}
ol.failures li{margin:.15em 0}
table.sequence{width:100%;font-size:13px}
table.sequence th{text-align:left;color:#555;font-weight:normal;border-bottom:1px solid #bbb}
table.sequence td{padding:1px 6px;vertical-align:bottom}
td.time,td.line{white-space:nowrap;color:#555;font-family:monospace}
td.lane{width:3em;padding:0;background:linear-gradient(#888,#888) no-repeat center/2px 100%}
td.wire{width:70%}
tr.command td{background:#eef2f7;padding-top:4px;border-top:1px solid #ccd}
tr.fail td:not(.lane){background:#fde2e2}
tr.fail td[colspan]{white-space:pre-line}
tr.gap td{text-align:center;color:#666;font-style:italic;padding:4px}
div.arrow{position:relative;border-bottom:2px solid #333;padding:0 6px 1px;margin:0 9px 5px 0}
div.arrow.to-pms{margin:0 0 5px 9px;text-align:right}
div.arrow::after{content:"";position:absolute;bottom:-6px;border-top:5px solid transparent;border-bottom:5px solid transparent}
div.arrow.to-pbx::after{right:-9px;border-left:9px solid #333}
div.arrow.to-pms::after{left:-9px;border-right:9px solid #333}
tr.fail div.arrow{border-bottom:2px dashed #b00000}
tr.fail div.arrow.to-pbx::after{border-left-color:#b00000}
tr.fail div.arrow.to-pms::after{border-right-color:#b00000}
div.note{padding:0 6px 4px}
code{font-family:monospace;white-space:pre;background:#f3f3f3;padding:0 2px}
table.statistics td,table.statistics th{padding:2px 8px;border-bottom:1px solid #ddd;text-align:right;vertical-align:middle}
table.statistics td:first-child,table.statistics th:first-child,table.statistics td:last-child,table.statistics th:last-child{text-align:left}
)";

QString countsText(const RunRecord::Counts& c, bool commands) {
    QString text;
    if (commands)
        text +=
            QStringLiteral("%1 commands played, %2 failed; ").arg(c.commands).arg(c.failedCommands);
    text += QStringLiteral("%1 exchanges: %2 refused with a NAK, %3 unanswered, %4 retries")
                .arg(c.exchanges)
                .arg(c.refused)
                .arg(c.unanswered)
                .arg(c.retries);
    if (commands)
        text += QStringLiteral("; %1 waits met, %2 failed").arg(c.waitsMet).arg(c.waitsFailed);
    return text;
}

QString headingHtml(const ReportHeading& heading, const RunRecord& record) {
    QString html =
        QStringLiteral("<h1>%1</h1>\n<table class=\"facts\">\n").arg(htmlText(heading.title));
    for (const auto& [name, value] : heading.facts)
        html += QStringLiteral("<tr><th>%1</th><td>%2</td></tr>\n")
                    .arg(htmlText(name), htmlText(value));
    const RunRecord::Counts& c = record.counts();
    const bool commands = c.commands > 0;
    return html +
           QStringLiteral("</table>\n<p class=\"counts\">%1</p>\n").arg(countsText(c, commands));
}

QString failuresHtml(const RunRecord& record) {
    if (record.failures().isEmpty())
        return QStringLiteral("<h2>Failures</h2>\n<p>None.</p>\n");
    QString html = QStringLiteral("<h2>Failures</h2>\n<ol class=\"failures\">\n");
    for (const ReportFailure& f : record.failures()) {
        const QString line = f.line > 0 ? QStringLiteral(", line %1").arg(f.line) : QString();
        html += QStringLiteral("<li><a href=\"#s%1\">%2%3</a> <span class=\"bad\">%4</span></li>\n")
                    .arg(f.step)
                    .arg(f.time.toString(QStringLiteral("HH:mm:ss.zzz")), line, htmlText(f.what));
    }
    html += QStringLiteral("</ol>\n");
    if (record.failuresLeftOut() > 0)
        html += QStringLiteral("<p>%1 more failures are not listed; the last of them are in the "
                               "conversation's end.</p>\n")
                    .arg(record.failuresLeftOut());
    return html;
}

QString statisticsHtml(const RunStatistics& statistics) {
    QString html = QStringLiteral("<h2>Answer times</h2>\n");
    if (statistics.isEmpty())
        return html + QStringLiteral("<p>Nothing was exchanged.</p>\n");
    html += QStringLiteral(
        "<table class=\"statistics\">\n<tr><th>message type</th><th>sent</th><th>acked</th>"
        "<th>refused</th><th>timeout</th><th>answer ms min/median/max</th><th>answer "
        "times</th></tr>\n");
    const auto ms = [](qint64 v) { return v < 0 ? QStringLiteral("-") : QString::number(v); };
    for (auto it = statistics.rows().cbegin(); it != statistics.rows().cend(); ++it) {
        const RunStatistics::Row& r = it.value();
        const auto count = [](int n, bool bad) {
            return bad && n > 0 ? QStringLiteral("<span class=\"bad\">%1</span>").arg(n)
                                : QString::number(n);
        };
        html += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td><td>%4</td><td>%5</td>"
                               "<td>%6/%7/%8</td><td>%9</td></tr>\n")
                    .arg(htmlText(it.key()), count(r.sent, false), count(r.acknowledged, false),
                         count(r.refused, true), count(r.timedOut, true), ms(r.minMs()),
                         ms(r.medianMs()), ms(r.maxMs()), answerHistogram(r.answerMs, it.key()));
    }
    return html + QStringLiteral("</table>\n");
}

QString keptText(const RunRecord& record, qsizetype kept) {
    if (kept == record.stepCount())
        return QStringLiteral("<p>All %1 steps of the conversation.</p>\n").arg(kept);
    return QStringLiteral("<p>%1 of %2 steps: the first and the last, and each failure with the "
                          "steps around it.</p>\n")
        .arg(kept)
        .arg(record.stepCount());
}
} // namespace

QString reportPage(const ReportHeading& heading, const RunRecord& record,
                   const RunStatistics& statistics) {
    const QList<ReportStep> steps = record.steps();
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta "
                          "charset=\"utf-8\">\n<title>%1</title>\n<style>%2</style>\n</head>\n"
                          "<body>\n")
               .arg(htmlText(heading.title), QLatin1String(style)) +
           headingHtml(heading, record) + failuresHtml(record) +
           QStringLiteral("<h2>Conversation</h2>\n") + keptText(record, steps.size()) +
           sequenceDrawing(steps, record.stepCount()) + statisticsHtml(statistics) +
           QStringLiteral("</body>\n</html>\n");
}

bool writeReportPage(const QString& path, const ReportHeading& heading, const RunRecord& record,
                     const RunStatistics& statistics, QString* error) {
    const QByteArray page = reportPage(heading, record, statistics).toUtf8();
    return writeWholeFile(
        path, [&page](QIODevice& file) { return file.write(page) == page.size(); }, error);
}

} // namespace larkspur
