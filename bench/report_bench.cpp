// The report page of a long run: 100,000 exchanges, one in a thousand refused and then every
// one, recorded and written as the page, beside the same exchanges written as wire trace lines.
#include "bench_common.h"

#include "records/run_statistics.h"
#include "records/wire_trace.h"
#include "report/report_page.h"
#include "report/run_record.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace larkspur;

namespace {

void measure(int refusedEvery, const char* what) {
    constexpr int exchanges = 100'000;
    QTemporaryDir dir;
    const QString page = dir.filePath(QStringLiteral("report.html"));
    const QString trace = dir.filePath(QStringLiteral("trace.txt"));
    const QDateTime start = QDateTime::currentDateTime();

    RunRecord record;
    RunStatistics statistics;
    QFile traceFile(trace);
    traceFile.open(QIODevice::WriteOnly);
    double recordSeconds = 0;
    double traceSeconds = 0;
    for (int i = 0; i < exchanges; ++i) {
        Exchange e;
        e.description = QStringLiteral("check-in room %1").arg(100 + i % 400);
        e.type = QStringLiteral("check-in");
        e.bytes = "\x02"
                  "CHK1   " +
                  QByteArray::number(100 + i % 400) + "\x03";
        e.time = start.addMSecs(qint64(i) * 1100);
        e.outcome = i % refusedEvery == refusedEvery - 1 ? Exchange::Outcome::Refused
                                                         : Exchange::Outcome::Acknowledged;
        e.ms = 3 + i % 17;
        e.ended = e.time.addMSecs(e.ms);
        statistics.add(e);
        const double r0 = bench::now();
        if (i % 50 == 0)
            record.commandStarted(QStringLiteral("CHK1   101"), i / 50 + 1, e.time);
        record.exchange(e);
        const double t0 = bench::now();
        traceFile.write((WireTrace::format({e.time, WireRow::Kind::Sent, e.bytes, {}}) + u'\n' +
                         WireTrace::format({e.ended, WireRow::Kind::Received, "\x06", {}}) + u'\n')
                            .toLatin1());
        traceSeconds += bench::now() - t0;
        recordSeconds += t0 - r0;
    }
    traceFile.close();

    const double w0 = bench::now();
    QString error;
    const bool written =
        writeReportPage(page, {QStringLiteral("bench"), {}}, record, statistics, &error);
    const double writeSeconds = bench::now() - w0;
    const double mb = double(QFileInfo(page).size()) / 1e6;
    bench::row(std::string("report page: 100000 exchanges, ") + what,
               bench::fmt("%.2f MB, written in %.3f s", mb, writeSeconds), "< 20 MB",
               written && mb < 20);
    bench::row("  recording them for it / the wire trace of them",
               bench::fmt("%.2f s / %.2f s (trace %.1f MB)", recordSeconds, traceSeconds,
                          double(QFileInfo(trace).size()) / 1e6),
               "-", true);
}

} // namespace

int main() {
    measure(1000, "1 in 1000 refused");
    measure(1, "every one refused");
    return 0;
}
