#include "records/run_statistics.h"

namespace larkspur {

qint64 RunStatistics::Row::minMs() const {
    return answerMs.isEmpty() ? -1 : answerMs.firstKey();
}

qint64 RunStatistics::Row::maxMs() const {
    return answerMs.isEmpty() ? -1 : answerMs.lastKey();
}

qint64 RunStatistics::Row::medianMs() const {
    // The answer at index answered / 2 in ascending order.
    qint64 before = answered / 2;
    for (auto it = answerMs.cbegin(); it != answerMs.cend(); ++it) {
        if (before < it.value())
            return it.key();
        before -= it.value();
    }
    return -1;
}

void RunStatistics::add(const Exchange& exchange) {
    count(exchange.type, exchange.outcome, exchange.answered() ? exchange.ms : -1);
}

namespace {
const QString waitPrefix = QStringLiteral("wait ");
} // namespace

void RunStatistics::addWait(const QString& item, bool succeeded, qint64 ms) {
    count(waitPrefix + item,
          succeeded ? Exchange::Outcome::Acknowledged : Exchange::Outcome::TimedOut,
          succeeded ? ms : -1);
}

void RunStatistics::count(const QString& type, Exchange::Outcome outcome, qint64 answerMs) {
    Row& row = m_rows[type];
    ++row.sent;
    switch (outcome) {
    case Exchange::Outcome::Acknowledged:
        ++row.acknowledged;
        break;
    case Exchange::Outcome::Refused:
        ++row.refused;
        break;
    case Exchange::Outcome::TimedOut:
        ++row.timedOut;
        break;
    }
    if (answerMs >= 0) {
        ++row.answerMs[answerMs];
        ++row.answered;
    }
}

QString RunStatistics::table() const {
    const auto ms = [](qint64 v) { return v < 0 ? QStringLiteral("-") : QString::number(v); };
    QString out = QStringLiteral("%1 %2 %3 %4 %5  %6\n")
                      .arg(QStringLiteral("message type"), -36)
                      .arg(QStringLiteral("sent"), 6)
                      .arg(QStringLiteral("acked"), 6)
                      .arg(QStringLiteral("refused"), 8)
                      .arg(QStringLiteral("timeout"), 8)
                      .arg(QStringLiteral("answer ms min/median/max"));
    for (auto it = m_rows.cbegin(); it != m_rows.cend(); ++it) {
        const Row& r = it.value();
        out += QStringLiteral("%1 %2 %3 %4 %5  %6/%7/%8\n")
                   .arg(it.key(), -36)
                   .arg(r.sent, 6)
                   .arg(r.acknowledged, 6)
                   .arg(r.refused, 8)
                   .arg(r.timedOut, 8)
                   .arg(ms(r.minMs()), ms(r.medianMs()), ms(r.maxMs()));
    }
    return out;
}

} // namespace larkspur
