#include "records/wire_trace.h"

#include "protocol/message_catalogue.h"
#include "protocol/readable_notation.h"

namespace larkspur {

namespace {
const char ENQ = 5, ACK = 6, NAK = 21, STX = 2, ETX = 3;

// A voice-mail frame: STX, body, ETX and the check character last.
bool checkCharacterRight(const QByteArray& frame) {
    const qsizetype etx = frame.lastIndexOf(ETX, frame.size() - 2);
    if (!frame.startsWith(STX) || etx < 1 || etx != frame.size() - 2)
        return false;
    quint8 bcc = 0;
    for (qsizetype i = 1; i <= etx; ++i)
        bcc ^= quint8(frame[i]);
    return bcc == quint8(frame.back());
}

bool isVmailFrame(const QByteArray& b) {
    return b.size() >= 3 && b.startsWith(STX) && b[b.size() - 2] == ETX;
}
} // namespace

WireTrace::WireTrace(qsizetype capacity) : m_capacity(qMax<qsizetype>(0, capacity)) {}

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

void WireTrace::endPending(ExchangeEvent::Outcome outcome, const QDateTime& time, QString* note) {
    if (!m_pending.active)
        return;
    m_pending.active = false;
    ExchangeEvent event{m_pending.type, outcome, -1};
    const bool enq = m_pending.type == u"ENQ";
    if (outcome == ExchangeEvent::Outcome::TimedOut) {
        *note = (enq ? QStringLiteral("ENQ") : QStringLiteral("frame")) +
                QStringLiteral(" unanswered (%1 ms)").arg(m_pending.since.msecsTo(time));
    } else {
        event.answerMs = m_pending.since.msecsTo(time);
        const QString verb = outcome == ExchangeEvent::Outcome::Acknowledged
                                 ? QStringLiteral("ACKed")
                                 : QStringLiteral("NAKed");
        *note = enq ? QStringLiteral("ENQ answered in %1 ms (%2)").arg(event.answerMs).arg(verb)
                    : QStringLiteral("frame %1 in %2 ms").arg(verb).arg(event.answerMs);
    }
    Q_EMIT exchangeEnded(event);
}

void WireTrace::sent(const QByteArray& bytes, const QDateTime& time, bool vmail) {
    WireRow row{time, WireRow::Kind::Sent, bytes, {}};
    const bool enq = bytes == QByteArray(1, ENQ);
    const bool frame = bytes.startsWith(STX);
    if (enq || frame) {
        // A new bid or frame means the one before was never answered.
        QString unanswered;
        endPending(ExchangeEvent::Outcome::TimedOut, time, &unanswered);
        if (!unanswered.isEmpty())
            add(WireRow{time, WireRow::Kind::Note, {}, unanswered});
        m_pending = {enq ? QStringLiteral("ENQ") : messageType(bytes, vmail), time, true};
    }
    if (frame && vmail && isVmailFrame(bytes))
        row.note = checkCharacterRight(bytes) ? QStringLiteral("check character right")
                                              : QStringLiteral("check character wrong");
    add(std::move(row));
}

void WireTrace::received(const QByteArray& bytes, const QDateTime& time, bool vmail) {
    WireRow row{time, WireRow::Kind::Received, bytes, {}};
    const QByteArray answer = bytes.trimmed();
    if (answer == QByteArray(1, ACK))
        endPending(ExchangeEvent::Outcome::Acknowledged, time, &row.note);
    else if (answer == QByteArray(1, NAK))
        endPending(ExchangeEvent::Outcome::Refused, time, &row.note);
    else if (vmail && isVmailFrame(bytes))
        row.note = checkCharacterRight(bytes) ? QStringLiteral("check character right")
                                              : QStringLiteral("check character wrong");
    add(std::move(row));
}

void WireTrace::finish(const QDateTime& time) {
    QString note;
    endPending(ExchangeEvent::Outcome::TimedOut, time, &note);
    if (!note.isEmpty())
        add(WireRow{time, WireRow::Kind::Note, {}, note});
}

void WireTrace::note(const QString& text, const QDateTime& time) {
    add(WireRow{time, WireRow::Kind::Note, {}, text});
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

QString WireTrace::messageType(const QByteArray& frame, bool vmail) {
    const QByteArray body = frame.mid(1);
    if (vmail) {
        if (const VmailMessage* message = findVmailMessage(QString::fromLatin1(body.left(1))))
            return message->name;
        return QStringLiteral("voice mail ") + toReadable(body.left(1));
    }
    if (const HotelMessage* message = hotelMessageOfBody(QString::fromLatin1(body)))
        return message->name;
    return QString::fromLatin1(body.left(4)).trimmed();
}

} // namespace larkspur
