#include "report/sequence_drawing.h"

#include "report/html_text.h"

#include <optional>

namespace larkspur {

namespace {
enum class Way { ToPbx, ToPms };

QString timeText(const QDateTime& time) {
    return time.toString(QStringLiteral("HH:mm:ss.zzz"));
}

QString lineText(int line) {
    return line > 0 ? QString::number(line) : QString();
}

// A row with an arrow (or, with no way, a note) between the lanes.
QString row(const QString& id, bool failed, const QDateTime& time, int line, std::optional<Way> way,
            const QString& label) {
    QString tr = QStringLiteral("<tr");
    if (!id.isEmpty())
        tr += QStringLiteral(" id=\"%1\"").arg(id);
    if (failed)
        tr += QStringLiteral(" class=\"fail\"");
    tr += QStringLiteral("><td class=\"time\">%1</td><td class=\"line\">%2</td><td "
                         "class=\"lane\"></td><td class=\"wire\">")
              .arg(timeText(time), lineText(line));
    if (way)
        tr += QStringLiteral("<div class=\"arrow %1\">%2</div>")
                  .arg(*way == Way::ToPbx ? QStringLiteral("to-pbx") : QStringLiteral("to-pms"),
                       label);
    else
        tr += QStringLiteral("<div class=\"note\">%1</div>").arg(label);
    return tr + QStringLiteral("</td><td class=\"lane\"></td></tr>\n");
}

// A row across the table.
QString wideRow(const QString& id, const QString& kind, const QDateTime& time, int line,
                const QString& text) {
    return QStringLiteral("<tr id=\"%1\" class=\"%2\"><td class=\"time\">%3</td><td "
                          "class=\"line\">%4</td><td colspan=\"3\">%5</td></tr>\n")
        .arg(id, kind, timeText(time), lineText(line), text);
}

QString failWord(const QString& word) {
    return QStringLiteral("<strong class=\"bad\">%1</strong> ").arg(word);
}

QString exchangeRows(const ReportStep& step, const QString& id) {
    const Exchange& e = step.exchange;
    const Way out = e.from == Side::Pms ? Way::ToPbx : Way::ToPms;
    const Way back = out == Way::ToPbx ? Way::ToPms : Way::ToPbx;
    QString label = htmlText(e.description);
    if (e.attempt > 1)
        label += QStringLiteral(" <em>attempt %1</em>").arg(e.attempt);
    if (!e.enq)
        label += QStringLiteral(" <code>%1</code>").arg(htmlBytes(e.bytes));
    QString rows = row(id, false, e.time, step.line, out, label);
    switch (e.outcome) {
    case Exchange::Outcome::Acknowledged:
        rows += row(QString(), false, e.ended, step.line, back,
                    QStringLiteral("ACK after %1 ms").arg(e.ms));
        break;
    case Exchange::Outcome::Refused:
        rows +=
            row(QString(), true, e.ended, step.line, back,
                failWord(QStringLiteral("REFUSED")) + QStringLiteral("NAK after %1 ms").arg(e.ms));
        break;
    case Exchange::Outcome::TimedOut:
        rows += row(QString(), true, e.ended, step.line, std::nullopt,
                    failWord(QStringLiteral("NO ANSWER")) + htmlText(e.note));
        break;
    }
    return rows;
}

QString waitRow(const ReportStep& step, const QString& id) {
    const QString item = htmlText(step.text);
    switch (step.waitEnd) {
    case ReportStep::WaitEnd::Met:
        return row(id, false, step.time, step.line, std::nullopt,
                   QStringLiteral("wait for %1: came after %2 ms").arg(item).arg(step.ms));
    case ReportStep::WaitEnd::Expired:
        return row(id, true, step.time, step.line, std::nullopt,
                   failWord(QStringLiteral("WAIT FAILED")) +
                       QStringLiteral("%1 did not come within %2 ms").arg(item).arg(step.ms));
    case ReportStep::WaitEnd::Stopped:
        break;
    }
    return row(id, true, step.time, step.line, std::nullopt,
               failWord(QStringLiteral("WAIT STOPPED")) +
                   QStringLiteral("the wait for %1 was stopped before it ended").arg(item));
}

QString gapRow(qint64 leftOut) {
    return QStringLiteral("<tr class=\"gap\"><td colspan=\"5\">&#8942; %1 more steps of the "
                          "conversation left out &#8942;</td></tr>\n")
        .arg(leftOut);
}
} // namespace

QString sequenceDrawing(const QList<ReportStep>& steps, qint64 total) {
    QString html = QStringLiteral(
        "<table class=\"sequence\">\n<tr><th>time</th><th>line</th><th>PMS</th><th></th>"
        "<th>PBX</th></tr>\n");
    qint64 last = 0;
    for (const ReportStep& step : steps) {
        if (step.number > last + 1)
            html += gapRow(step.number - last - 1);
        last = step.number;
        const QString id = QStringLiteral("s%1").arg(step.number);
        switch (step.kind) {
        case ReportStep::Kind::Command:
            html += wideRow(id, QStringLiteral("command"), step.time, step.line,
                            QStringLiteral("<code>%1</code>").arg(htmlText(step.text)));
            break;
        case ReportStep::Kind::CommandFailed:
            html += wideRow(id, QStringLiteral("fail"), step.time, step.line,
                            failWord(QStringLiteral("COMMAND FAILED")) + htmlText(step.text));
            break;
        case ReportStep::Kind::Exchange:
            html += exchangeRows(step, id);
            break;
        case ReportStep::Kind::Wait:
            html += waitRow(step, id);
            break;
        }
    }
    if (total > last)
        html += gapRow(total - last);
    return html + QStringLiteral("</table>\n");
}

} // namespace larkspur
