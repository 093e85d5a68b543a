#include "records/wire_trace.h"

#include "core/event_pump.h"
#include "protocol/readable_notation.h"

namespace larkspur {

namespace {
// How an answer reads in the row that carries it.
QString answerNote(const Exchange& exchange) {
    const QString who = exchange.from == Side::Pbx ? QStringLiteral("PBX ") : QString();
    const QString verb = exchange.outcome == Exchange::Outcome::Acknowledged
                             ? QStringLiteral("ACKed")
                             : QStringLiteral("NAKed");
    return exchange.enq
               ? who + QStringLiteral("ENQ answered in %1 ms (%2)").arg(exchange.ms).arg(verb)
               : who + QStringLiteral("frame %1 in %2 ms").arg(verb).arg(exchange.ms);
}
} // namespace

WireTrace::WireTrace(EventPump& pump, qsizetype capacity)
    : m_pump(pump), m_pairing(pump, PmsMode::Hotel, 0), m_capacity(qMax<qsizetype>(0, capacity)) {
    connect(&m_pairing, &ExchangePairing::opened, this, &WireTrace::exchangeOpened);
    connect(&m_pairing, &ExchangePairing::ended, this, &WireTrace::onEnded);
}

const WireRow& WireTrace::row(qsizetype index) const {
    return m_rows.at((m_first + index) % m_rows.size());
}

void WireTrace::clear() {
    m_rows.clear();
    m_first = 0;
    m_dropped = 0;
}

void WireTrace::add(WireRow row) {
    Q_EMIT rowAdded(row);
    if (m_capacity == 0) {
        ++m_dropped;
        return;
    }
    if (m_rows.size() < m_capacity) {
        m_rows.append(std::move(row));
        return;
    }
    m_rows[m_first] = std::move(row);
    m_first = (m_first + 1) % m_capacity;
    ++m_dropped;
}

void WireTrace::sent(const QByteArray& bytes, PmsMode mode) {
    take(Side::Pms, {m_pump.currentDateTime(), WireRow::Kind::Sent, bytes, {}}, mode);
}

void WireTrace::received(const QByteArray& bytes, PmsMode mode) {
    take(Side::Pbx, {m_pump.currentDateTime(), WireRow::Kind::Received, bytes, {}}, mode);
}

void WireTrace::take(Side from, WireRow row, PmsMode mode) {
    const bool vmail = mode == PmsMode::Vmail;
    WireScanner& scanner = m_scanners[int(from)];
    scanner.setCheckCharacter(vmail);
    m_pairing.setMode(mode);
    QStringList notes;
    m_rowNotes = &notes;
    const double seconds = m_pump.monotonicSeconds();
    // Each write or read is cut on its own: a frame it leaves unfinished is shown as it stands.
    QList<WireUnit> units = scanner.feed(row.bytes);
    if (const std::optional<WireUnit> unfinished = scanner.flush())
        units.append(*unfinished);
    for (const WireUnit& unit : units) {
        m_pairing.track(from, unit, row.time, seconds);
        if (unit.check != WireUnit::Check::None)
            notes << (unit.check == WireUnit::Check::Right
                          ? QStringLiteral("check character right")
                          : QStringLiteral("check character wrong"));
    }
    m_rowNotes = nullptr;
    row.note = notes.join(QStringLiteral("; "));
    add(std::move(row));
}

void WireTrace::onEnded(const Exchange& exchange) {
    Q_EMIT exchangeEnded(exchange);
    if (exchange.answered() && m_rowNotes)
        m_rowNotes->append(answerNote(exchange));
    else if (!exchange.note.isEmpty())
        add(WireRow{exchange.ended, WireRow::Kind::Note, {}, exchange.note});
}

void WireTrace::finish(const QString& why) {
    m_pairing.endSession(why, m_pump.currentDateTime(), m_pump.monotonicSeconds());
}

void WireTrace::note(const QString& text) {
    add(WireRow{m_pump.currentDateTime(), WireRow::Kind::Note, {}, text});
}

QString WireTrace::format(const WireRow& row) {
    const QString stamp = row.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    if (row.kind == WireRow::Kind::Note)
        return stamp + QStringLiteral(" -- ") + row.note;
    QString line =
        stamp +
        (row.kind == WireRow::Kind::Sent ? QStringLiteral(" TX ") : QStringLiteral(" RX ")) +
        toReadable(row.bytes) + QStringLiteral("   | ") +
        QString::fromLatin1(row.bytes.toHex(' ').toUpper());
    if (!row.note.isEmpty())
        line += QStringLiteral("   ; ") + row.note;
    return line;
}

} // namespace larkspur
