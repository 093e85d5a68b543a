#pragma once

#include <QList>
#include <QString>

#include <utility>

namespace larkspur {

class RunRecord;
class RunStatistics;

// What the page's header says of the run: its title and facts in order ("Link", "TCP
// 127.0.0.1:15374").
struct ReportHeading {
    QString title;
    QList<std::pair<QString, QString>> facts;
};

// One HTML page that needs nothing from anywhere else: the heading, the failures first, the
// conversation drawn, then per message type the statistics beside a histogram of answer times.
QString reportPage(const ReportHeading& heading, const RunRecord& record,
                   const RunStatistics& statistics);

// Writes the page to `path`; false with the reason in `error`.
bool writeReportPage(const QString& path, const ReportHeading& heading, const RunRecord& record,
                     const RunStatistics& statistics, QString* error);

} // namespace larkspur
