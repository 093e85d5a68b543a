#pragma once

#include "core/pms_mode.h"
#include "protocol/wire_units.h"
#include "records/exchange_pairing.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace larkspur {

class EventPump;

// One transport write or read, or a note about the exchange.
struct WireRow {
    enum class Kind { Sent, Received, Note };
    QDateTime time;
    Kind kind = Kind::Note;
    QByteArray bytes;
    QString note; // "ENQ answered in 3 ms (ACKed)", "frame ACKed in 4 ms", "check character right"
};

// Every byte the console sent and received, beside the traffic log (which hides control characters
// and has no time stamps), with what each write and read meant to the exchange it belongs to.
// Keeps the newest rows in a ring so a long run costs bounded memory; rows are also announced as
// they come, for a file or a panel.
class WireTrace : public QObject {
    Q_OBJECT
public:
    // `capacity` 0 keeps no rows: they are only announced.
    WireTrace(EventPump& pump, qsizetype capacity = 100'000);

    void sent(const QByteArray& bytes, PmsMode mode);
    void received(const QByteArray& bytes, PmsMode mode);
    // The link closed: what is still unanswered gets no answer, for `why`.
    void finish(const QString& why);
    // A note of its own, not about an exchange: the link came up, was closed, was lost.
    void note(const QString& text);

    qsizetype size() const { return m_rows.size(); }
    const WireRow& row(qsizetype index) const;
    qsizetype dropped() const { return m_dropped; }
    void clear();

    // "12:00:00.123 TX <STX>CHK1   101<ETX>   02 43 48 4B 31 ... 03   frame ACKed in 4 ms"
    static QString format(const WireRow& row);

Q_SIGNALS:
    void rowAdded(const larkspur::WireRow& row);
    void exchangeOpened(const larkspur::Exchange& exchange);
    void exchangeEnded(const larkspur::Exchange& exchange);

private:
    void take(Side from, WireRow row, PmsMode mode);
    void onEnded(const Exchange& exchange);
    void add(WireRow row);

    EventPump& m_pump;
    WireScanner m_scanners[2];
    ExchangePairing m_pairing;
    // The notes of the write or read being traced, while its units are paired.
    QStringList* m_rowNotes = nullptr;
    QList<WireRow> m_rows;
    qsizetype m_first = 0; // index of the oldest row once the ring is full
    qsizetype m_capacity;
    qsizetype m_dropped = 0;
};

} // namespace larkspur
