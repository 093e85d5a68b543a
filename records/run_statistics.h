#pragma once

#include "records/exchange_pairing.h"

#include <QMap>
#include <QString>

namespace larkspur {

// Per message type: how many went out and how they fared, with answer times.
class RunStatistics {
public:
    struct Row {
        int sent = 0;
        int acknowledged = 0;
        int refused = 0;
        int timedOut = 0;
        // How many answers took each number of milliseconds: a week of answers costs no more
        // memory than a minute of them, and the median is still exact.
        QMap<qint64, qint64> answerMs;
        qint64 answered = 0;
        qint64 minMs() const;
        qint64 medianMs() const;
        qint64 maxMs() const;
    };

    void add(const Exchange& exchange);
    // An expected-message wait: "wait sts2" rows count successes as acknowledged.
    void addWait(const QString& item, bool succeeded, qint64 ms);

    const QMap<QString, Row>& rows() const { return m_rows; }
    bool isEmpty() const { return m_rows.isEmpty(); }

    // A plain-text table, one row per type.
    QString table() const;

private:
    void count(const QString& type, Exchange::Outcome outcome, qint64 answerMs);

    QMap<QString, Row> m_rows;
};

} // namespace larkspur
